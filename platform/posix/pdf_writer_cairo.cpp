#include <algorithm>
#include <cstdio>

#include "platform/pdf_writer.h"
#include "platform/posix/cairo_library.h"
#include "qxview/version.h"

namespace qxview {
namespace {

constexpr char kFonts[] = "DejaVu Sans Mono, Liberation Mono, Noto Sans Mono, monospace";
constexpr char kHeadFonts[] = "DejaVu Sans, Liberation Sans, Noto Sans, sans-serif";

struct Face {
  PangoFontDescription* font = nullptr;
  PangoFont* loaded = nullptr;
  const cairo_scaled_font_t* scaled = nullptr;   // belongs to the loaded font
};

class CairoPdfWriter final : public PdfWriter {
 public:
  CairoPdfWriter(const CairoLibrary& library, const PaperForm& form, const OutputSink& sink)
      : cairo_(library), form_(form), sheet_(SheetOf(form)), sink_(sink) {}
  ~CairoPdfWriter() override {
    for (const Face& face : {plain_, bold_, head_}) {
      if (face.loaded) cairo_.g_object_unref(face.loaded);
      if (face.font) cairo_.pango_font_description_free(face.font);
    }
    if (layout_) cairo_.g_object_unref(layout_);
    if (ink_) cairo_.cairo_destroy(ink_);
    isBroken_ = true;   // what the surface still has to say is not written
    if (surface_) cairo_.cairo_surface_destroy(surface_);
  }

  bool Begin(const std::string& title, std::string* message) {
    surface_ = cairo_.cairo_pdf_surface_create_for_stream(Write, this, sheet_.width, sheet_.height);
    cairo_.cairo_pdf_surface_set_metadata(surface_, kPdfMetadataTitle, title.c_str());
    cairo_.cairo_pdf_surface_set_metadata(surface_, kPdfMetadataCreator, "qxview " QXVIEW_VERSION_TEXT);
    ink_ = cairo_.cairo_create(surface_);
    layout_ = cairo_.pango_cairo_create_layout(ink_);
    // Letters stand where they belong, not on the points of a screen.
    PangoContext* const context = cairo_.pango_layout_get_context(layout_);
    cairo_font_options_t* const options = cairo_.cairo_font_options_create();
    cairo_.cairo_font_options_set_hint_style(options, kCairoHintStyleNone);
    cairo_.cairo_font_options_set_hint_metrics(options, kCairoHintMetricsOff);
    cairo_.pango_cairo_context_set_font_options(context, options);
    cairo_.cairo_font_options_destroy(options);
    cairo_.pango_context_set_round_glyph_positions(context, 0);
    cairo_.pango_layout_set_single_paragraph_mode(layout_, 1);
    plain_.font = MakeFont(kFonts, kPangoWeightNormal);
    bold_.font = MakeFont(kFonts, kPangoWeightBold);
    head_.font = MakeFont(kHeadFonts, kPangoWeightNormal);
    for (Face* face : {&plain_, &bold_}) {
      face->loaded = cairo_.pango_context_load_font(context, face->font);
      face->scaled = face->loaded ? cairo_.pango_cairo_font_get_scaled_font(face->loaded) : nullptr;
    }
    constexpr int32_t kMeasured = 100;
    cell_ = {Lay(std::string(kMeasured, '0'), plain_.font, 0) / kMeasured, form_.fontSize * kLineHeight};
    if (IsGood() && cell_.width > 0) return true;
    return *message = "--pdf: no page can be drawn; is there any font?", false;
  }

  CellSize Cell() const override { return cell_; }

  bool Put(const Page& page) override {
    const size_t perSheet = sheet_.places.size();
    const size_t place = static_cast<size_t>(page.number - 1) % perSheet;
    cairo_.cairo_save(ink_);
    cairo_.cairo_translate(ink_, sheet_.places[place].x, sheet_.places[place].y);
    cairo_.cairo_scale(ink_, sheet_.places[place].scale, sheet_.places[place].scale);
    Draw(page);
    cairo_.cairo_restore(ink_);
    AddBookmarks(page, sheet_.places[place]);
    hasPage_ = place + 1 < perSheet;
    if (!hasPage_) ShowPage();
    return IsGood();
  }

  bool Finish() override {
    if (hasPage_) ShowPage();
    cairo_.cairo_surface_finish(surface_);
    return IsGood();
  }

 private:
  static int Write(void* writer, const unsigned char* data, unsigned length) {
    auto& self = *static_cast<CairoPdfWriter*>(writer);
    for (unsigned at = 0; !self.isBroken_ && at < length;) {
      const unsigned piece = std::min<unsigned>(length - at, 1 << 20);
      const char* const bytes = reinterpret_cast<const char*>(data) + at;
      self.isBroken_ = self.sink_.write(self.sink_.handle, bytes, static_cast<int32_t>(piece)) != 1;
      at += piece;
    }
    return kCairoSuccess;   // also where it failed: a surface that is told so reads freed memory when it is let go
  }

  bool IsGood() {
    return !isBroken_ && cairo_.cairo_surface_status(surface_) == kCairoSuccess && cairo_.cairo_status(ink_) == kCairoSuccess;
  }

  PangoFontDescription* MakeFont(const char* names, int weight) {
    PangoFontDescription* const font = cairo_.pango_font_description_from_string(names);
    cairo_.pango_font_description_set_absolute_size(font, form_.fontSize * kPangoScale);
    cairo_.pango_font_description_set_weight(font, weight);
    return font;
  }

  void ShowPage() {
    cairo_.cairo_show_page(ink_);
    ++sheets_;
    hasPage_ = false;
  }

  void Gray(double level) { cairo_.cairo_set_source_rgb(ink_, level, level, level); }

  void Fill(double x, double y, double width, double height, double gray) {
    Gray(gray);
    cairo_.cairo_rectangle(ink_, x, y, width, height);
    cairo_.cairo_fill(ink_);
  }

  // Its width in points.
  double Lay(const std::string& text, const PangoFontDescription* font, double most) {
    cairo_.pango_layout_set_font_description(layout_, font);
    cairo_.pango_layout_set_width(layout_, most > 0 ? static_cast<int>(most * kPangoScale) : -1);
    cairo_.pango_layout_set_ellipsize(layout_, most > 0 ? kPangoEllipsizeMiddle : 0);
    cairo_.pango_layout_set_text(layout_, text.data(), static_cast<int>(std::min<size_t>(text.size(), 1 << 20)));
    int width = 0, height = 0;
    if (most >= 0) cairo_.pango_layout_get_size(layout_, &width, &height);
    return static_cast<double>(width) / kPangoScale;
  }

  void ShowAt(double x, double y) {
    cairo_.cairo_move_to(ink_, x, y + form_.fontSize * kBaseline);
    cairo_.pango_cairo_show_layout_line(ink_, cairo_.pango_layout_get_line_readonly(layout_, 0));
  }

  void Draw(const Page& page) {
    const double left = form_.margins.left, right = form_.width - form_.margins.right, top = form_.margins.top;
    const double gap = 2 * cell_.width;
    Gray(kGray);
    const std::string about = page.packets + "    " + page.time;
    const double aboutWidth = Lay(about, head_.font, 0);
    ShowAt(right - aboutWidth, top);
    Lay(page.capture, head_.font, std::max(right - left - aboutWidth - gap, gap));
    ShowAt(left, top);
    Fill(left, top + kRuleAt * cell_.height, right - left, kRuleHeight, kRule);
    double y = RowTop(0);
    for (const PageRow& row : page.rows) {
      const double bandTop = y - 0.04 * cell_.height, bandWidth = right - left + 2 * kBandBeyond;
      if (row.kind == RowKind::kPacket) Fill(left - kBandBeyond, bandTop, bandWidth, cell_.height, kBand);
      if (!row.text.empty()) {
        Gray(kBlack);
        PutRow(row, left, y);
      }
      y += cell_.height;
    }
    Gray(kGray);
    const double numberWidth = Lay(std::to_string(page.number), head_.font, 0);
    ShowAt((form_.width - numberWidth) / 2, form_.height - form_.margins.bottom - cell_.height);
  }

  // ASCII, which every font has, needs nobody to look for fonts and shapes: that takes ten times as long.
  void PutRow(const PageRow& row, double x, double y) {
    const Face& face = row.kind == RowKind::kLine ? plain_ : bold_;
    if (face.scaled && std::all_of(row.text.begin(), row.text.end(), [](char c) { return c >= 0x20 && c < 0x7F; })) {
      cairo_.cairo_set_scaled_font(ink_, face.scaled);
      cairo_.cairo_move_to(ink_, x, y + form_.fontSize * kBaseline);
      cairo_.cairo_show_text(ink_, row.text.c_str());
    } else {
      Lay(row.text, face.font, -1);
      ShowAt(x, y);
    }
  }

  double RowTop(int32_t row) const { return form_.margins.top + (kHeadLines + row) * cell_.height; }

  void AddBookmarks(const Page& page, const Sheet::Place& place) {
    for (const Page::Start& start : page.starts) {
      char where[120];
      std::snprintf(where, sizeof where, "page=%lld pos=[%.1f %.1f]", sheets_ + 1, place.x + place.scale * form_.margins.left,
                    place.y + place.scale * RowTop(start.row));
      cairo_.cairo_pdf_surface_add_outline(surface_, kPdfOutlineRoot, start.title.c_str(), where, kPdfOutlineOpen);
    }
  }

  const CairoLibrary& cairo_;
  const PaperForm form_;
  const Sheet sheet_;
  const OutputSink sink_;
  bool isBroken_ = false;   // a write did not succeed; none follows
  bool hasPage_ = false;    // on the sheet that is being drawn
  long long sheets_ = 0;    // that are drawn
  cairo_surface_t* surface_ = nullptr;
  cairo_t* ink_ = nullptr;
  PangoLayout* layout_ = nullptr;
  Face plain_, bold_, head_;
  CellSize cell_{};
};

}  // namespace

std::unique_ptr<PdfWriter> PdfWriter::Create(const PaperForm& form, const OutputSink& sink, const std::string& title,
                                             std::string* message) {
  std::string why;
  const CairoLibrary* const library = CairoLibrary::Load(&why);
  if (!library) return *message = "--pdf needs pango and cairo (Debian: libpangocairo-1.0-0): " + why, nullptr;
  auto writer = std::make_unique<CairoPdfWriter>(*library, form, sink);
  if (!writer->Begin(title, message)) return nullptr;
  return writer;
}

}  // namespace qxview

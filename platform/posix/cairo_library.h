// cairo and pango, looked up when a PDF file is asked for: a program that prints none starts without them, and one on a
// machine that does not have them says so. What is used of their interface is stable, and is declared here, so that it is
// there whatever was there at the build.
#pragma once
#include <string>

namespace qxview {

struct cairo_t;
struct cairo_surface_t;
struct cairo_font_options_t;
struct cairo_scaled_font_t;
struct PangoContext;
struct PangoLayout;
struct PangoLayoutLine;
struct PangoFontDescription;
struct PangoFont;

using cairo_write_func_t = int (*)(void* closure, const unsigned char* data, unsigned length);

constexpr int kCairoSuccess = 0, kCairoWriteError = 11;
constexpr int kCairoHintStyleNone = 1, kCairoHintMetricsOff = 1;
constexpr int kPdfOutlineRoot = 0, kPdfOutlineOpen = 1;
constexpr int kPdfMetadataTitle = 0, kPdfMetadataCreator = 4;
constexpr int kPangoScale = 1024, kPangoWeightNormal = 400, kPangoWeightBold = 700, kPangoEllipsizeMiddle = 2;

// Result, name, arguments.
#define QXVIEW_CAIRO_FUNCTIONS(X)                                                                           \
  X(cairo_surface_t*, cairo_pdf_surface_create_for_stream, (cairo_write_func_t, void*, double, double))     \
  X(void, cairo_pdf_surface_set_metadata, (cairo_surface_t*, int, const char*))                             \
  X(int, cairo_pdf_surface_add_outline, (cairo_surface_t*, int, const char*, const char*, int))             \
  X(void, cairo_surface_finish, (cairo_surface_t*))                                                         \
  X(int, cairo_surface_status, (cairo_surface_t*))                                                          \
  X(void, cairo_surface_destroy, (cairo_surface_t*))                                                        \
  X(cairo_t*, cairo_create, (cairo_surface_t*))                                                             \
  X(int, cairo_status, (cairo_t*))                                                                          \
  X(void, cairo_destroy, (cairo_t*))                                                                        \
  X(void, cairo_show_page, (cairo_t*))                                                                      \
  X(void, cairo_save, (cairo_t*))                                                                           \
  X(void, cairo_restore, (cairo_t*))                                                                        \
  X(void, cairo_translate, (cairo_t*, double, double))                                                      \
  X(void, cairo_scale, (cairo_t*, double, double))                                                          \
  X(void, cairo_move_to, (cairo_t*, double, double))                                                        \
  X(void, cairo_set_scaled_font, (cairo_t*, const cairo_scaled_font_t*))                                    \
  X(void, cairo_show_text, (cairo_t*, const char*))                                                         \
  X(void, cairo_rectangle, (cairo_t*, double, double, double, double))                                      \
  X(void, cairo_fill, (cairo_t*))                                                                           \
  X(void, cairo_set_source_rgb, (cairo_t*, double, double, double))                                         \
  X(cairo_font_options_t*, cairo_font_options_create, ())                                                   \
  X(void, cairo_font_options_set_hint_style, (cairo_font_options_t*, int))                                  \
  X(void, cairo_font_options_set_hint_metrics, (cairo_font_options_t*, int))                                \
  X(void, cairo_font_options_destroy, (cairo_font_options_t*))                                              \
  X(PangoLayout*, pango_cairo_create_layout, (cairo_t*))                                                    \
  X(void, pango_cairo_context_set_font_options, (PangoContext*, const cairo_font_options_t*))               \
  X(void, pango_cairo_show_layout_line, (cairo_t*, PangoLayoutLine*))                                       \
  X(PangoContext*, pango_layout_get_context, (PangoLayout*))                                                \
  X(void, pango_layout_set_text, (PangoLayout*, const char*, int))                                          \
  X(void, pango_layout_set_width, (PangoLayout*, int))                                                      \
  X(void, pango_layout_set_ellipsize, (PangoLayout*, int))                                                  \
  X(void, pango_layout_set_single_paragraph_mode, (PangoLayout*, int))                                      \
  X(void, pango_layout_set_font_description, (PangoLayout*, const PangoFontDescription*))                   \
  X(void, pango_layout_get_size, (PangoLayout*, int*, int*))                                                \
  X(PangoLayoutLine*, pango_layout_get_line_readonly, (PangoLayout*, int))                                  \
  X(void, pango_context_set_round_glyph_positions, (PangoContext*, int))                                    \
  X(PangoFont*, pango_context_load_font, (PangoContext*, const PangoFontDescription*))                      \
  X(cairo_scaled_font_t*, pango_cairo_font_get_scaled_font, (PangoFont*))                                   \
  X(PangoFontDescription*, pango_font_description_from_string, (const char*))                               \
  X(void, pango_font_description_set_absolute_size, (PangoFontDescription*, double))                        \
  X(void, pango_font_description_set_weight, (PangoFontDescription*, int))                                  \
  X(void, pango_font_description_free, (PangoFontDescription*))                                             \
  X(void, g_object_unref, (void*))

struct CairoLibrary {
#define QXVIEW_MEMBER(result, name, arguments) result(*name) arguments;
  QXVIEW_CAIRO_FUNCTIONS(QXVIEW_MEMBER)
#undef QXVIEW_MEMBER

  // Null with a reason.
  static const CairoLibrary* Load(std::string* why);
};

}  // namespace qxview

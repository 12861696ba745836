#include "app/page.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "core/characters.h"

namespace qxview {
namespace {

constexpr const char* kReplacement = "\xEF\xBF\xBD";

bool TurnsText(uint32_t character) {
  return character == 0x61C || character == 0x200E || character == 0x200F || (character >= 0x202A && character <= 0x202E) ||
         (character >= 0x2066 && character <= 0x2069);
}

void AppendCharacter(uint32_t character, std::string_view bytes, std::string* out) {
  char text[8];
  switch (character) {
    case '&': *out += "&amp;"; return;
    case '<': *out += "&lt;"; return;
    case '>': *out += "&gt;"; return;
    case '"': *out += "&quot;"; return;
    case '\'': *out += "&#39;"; return;
    default: break;
  }
  if (character < 0x20 || (character >= 0x7F && character < 0xA0)) {
    std::snprintf(text, sizeof text, "\\x%02X", character);
    *out += text;
  } else if (TurnsText(character) || character == 0xFFFE || character == 0xFFFF) {
    *out += kReplacement;
  } else {
    *out += bytes;
  }
}

// With three digits that count, and no zeros behind the point that say nothing.
std::string ThreeDigits(double number) {
  char text[32];
  const int digits = number >= 99.95 ? 0 : number >= 9.995 ? 1 : 2;
  std::snprintf(text, sizeof text, "%.*f", digits, number);
  std::string made = text;
  if (digits) made.erase(made.find_last_not_of('0') + 1);
  if (made.ends_with('.')) made.pop_back();
  return made;
}

}  // namespace

std::string EscapeHtml(std::string_view text) {
  std::string out;
  for (size_t at = 0; at < text.size();) {
    const Utf8Character next = Utf8At(reinterpret_cast<const uint8_t*>(text.data()) + at, static_cast<int32_t>(text.size() - at));
    if (next.octets == 0) {
      out += kReplacement;
      ++at;
      continue;
    }
    const auto octets = static_cast<size_t>(next.octets);
    AppendCharacter(next.code, text.substr(at, octets), &out);
    at += octets;
  }
  return out;
}

std::string CountText(uint64_t count) {
  std::string text = std::to_string(count);
  for (size_t at = text.size(); at > 3;) text.insert(at -= 3, 1, ',');
  return text;
}

std::string RateText(double count) {
  return count >= 99.95 && count < 1e18 ? CountText(static_cast<uint64_t>(count + 0.5)) : ThreeDigits(count);
}

std::string BytesText(double bytes) {
  static constexpr const char* kUnits[] = {"B", "kB", "MB", "GB", "TB", "PB"};
  size_t unit = 0;
  for (; bytes >= 999.5 && unit + 1 < std::size(kUnits); ++unit) bytes /= 1000;
  return ThreeDigits(bytes) + " " + kUnits[unit];
}

std::string TimeText(int64_t nanoseconds) {
  if (nanoseconds < 0) return std::string("\xE2\x88\x92").append(TimeText(nanoseconds == INT64_MIN ? INT64_MAX : -nanoseconds));
  const auto time = static_cast<double>(nanoseconds);
  if (nanoseconds < 1000) return std::to_string(nanoseconds) + " ns";
  if (time < 999.5e3) return ThreeDigits(time / 1e3) + " \xC2\xB5s";
  if (time < 999.5e6) return ThreeDigits(time / 1e6) + " ms";
  if (time < 60e9) return ThreeDigits(time / 1e9) + " s";
  const int64_t seconds = nanoseconds / 1000000000;
  const auto two = [](int64_t big, const char* bigUnit, int64_t little, const char* littleUnit) {
    std::string text = std::to_string(big) + " " + bigUnit;
    if (little) text.append(" ").append(std::to_string(little)).append(" ").append(littleUnit);
    return text;
  };
  if (seconds < 3600) return two(seconds / 60, "min", seconds % 60, "s");
  if (seconds < 86400) return two(seconds / 3600, "h", seconds / 60 % 60, "min");
  return two(seconds / 86400, "d", seconds / 3600 % 24, "h");
}

std::string PercentText(uint64_t part, uint64_t whole) {
  if (whole == 0) return "";
  const double percent = 100.0 * static_cast<double>(part) / static_cast<double>(whole);
  char text[16];
  if (part > 0 && percent < 0.1) return "< 0.1 %";
  std::snprintf(text, sizeof text, "%.1f %%", percent);
  return text;
}

std::string PlainDecimal(double number) {
  char text[40];
  std::snprintf(text, sizeof text, "%.3f", number);
  std::string made = text;
  made.erase(made.find_last_not_of('0') + 1);
  if (made.ends_with('.')) made.pop_back();
  return made;
}

std::string SourceAttributes(const Source& source) {
  if (source.filter.empty() && source.packets == 0) return "";
  return " data-w=\"" + EscapeHtml(source.filter) + "\" data-n=\"" + std::to_string(source.packets) + "\"" +
         (source.isPart ? " data-part=\"1\"" : "");
}

std::string Figure(std::string_view shown, const Source& source) {
  const std::string attributes = SourceAttributes(source);
  if (attributes.empty()) return EscapeHtml(shown);
  const std::string title = source.filter.empty() ? "all packets" : EscapeHtml(source.filter);
  return "<button type=\"button\" class=\"n\"" + attributes + " title=\"" + title + "\">" + EscapeHtml(shown) + "</button>";
}

void PageTable::Row(const std::vector<std::string>& html) {
  std::string row = "<tr>";
  for (size_t i = 0; i < columns_.size() && i < html.size(); ++i) {
    static constexpr const char* kClasses[] = {"t", "r", "b", "m"};
    row += std::string("<td class=\"") + kClasses[static_cast<size_t>(columns_[i].kind)] + (columns_[i].isExtra ? " x" : "") + "\">";
    row += html[i] + "</td>";
  }
  html_.push_back(row + "</tr>\n");
  ++rows_;
}

std::string PageTable::Head() const {
  std::string head = "<div class=\"scroll\"><table><thead><tr>";
  for (const Column& column : columns_) {
    head += std::string("<th scope=\"col\" class=\"") + (column.kind == Kind::kNumber ? "r" : "t") + (column.isExtra ? " x" : "") +
            "\">" + column.title + "</th>";
  }
  return head + "</tr></thead><tbody>\n";
}

std::string PageTable::Html(size_t shown) const {
  constexpr const char* kEnd = "</tbody></table></div>\n";
  std::string html = Head();
  for (size_t i = 0; i < html_.size() && i < shown; ++i) html += html_[i];
  html += kEnd;
  if (html_.size() <= shown) return html;
  html += "<details><summary>" + CountText(html_.size() - shown) + " more</summary>\n" + Head();
  for (size_t i = shown; i < html_.size(); ++i) html += html_[i];
  return html + kEnd + "</details>\n";
}

}  // namespace qxview

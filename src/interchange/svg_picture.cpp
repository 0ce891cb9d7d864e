#include "interchange/svg_picture.h"

#include <fmt/format.h>

#include <iterator>

#include "interchange/text_encoding.h"

namespace tabelion {
namespace {

constexpr int kFontPixels = 12;

std::string colorText(Color color) {
  return fmt::format("#{:02x}{:02x}{:02x}", color.red, color.green, color.blue);
}

// Markup becomes text, and what a file of this kind may not hold becomes a blank.
std::string escaped(const std::u16string& text) {
  std::string result;
  for (const char c : TextEncoding::utf8().fromUtf16(text).bytes) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      default:
        result += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
  }
  return result;
}

}  // namespace

SvgPicture::SvgPicture(Size size, const std::u16string& description) {
  body_ = fmt::format(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" "
      "viewBox=\"0 0 {0} {1}\" role=\"img\" font-family=\"sans-serif\" font-size=\"{2}\">\n"
      "<title>{3}</title>\n"
      "<rect width=\"{0}\" height=\"{1}\" fill=\"#ffffff\"/>\n",
      size.width, size.height, kFontPixels, escaped(description));
}

void SvgPicture::fill(const Rect& area, Color color) {
  fmt::format_to(std::back_inserter(body_),
                 "<rect x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\" fill=\"{}\"/>\n", area.x,
                 area.y, area.width, area.height, colorText(color));
}

void SvgPicture::line(Point from, Point to, Color color, int width) {
  fmt::format_to(std::back_inserter(body_),
                 "<line x1=\"{}.5\" y1=\"{}.5\" x2=\"{}.5\" y2=\"{}.5\" stroke=\"{}\" "
                 "stroke-width=\"{}\"/>\n",
                 from.x, from.y, to.x, to.y, colorText(color), width);
}

// An inner picture of the area's size cuts off what is too long. Many viewers cannot put the middle
// of a text somewhere, so its line is put where the middle is that far above.
void SvgPicture::text(const Rect& area, const std::u16string& text, Color color, TextWeight weight,
                      TextSide side) {
  if (text.empty() || area.width <= 0 || area.height <= 0) return;
  const char* const anchor = side == TextSide::kLeft     ? "start"
                             : side == TextSide::kMiddle ? "middle"
                                                         : "end";
  const int x = side == TextSide::kLeft     ? 0
                : side == TextSide::kMiddle ? area.width / 2
                                            : area.width;
  fmt::format_to(std::back_inserter(body_),
                 "<svg x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\"><text x=\"{}\" y=\"50%\" "
                 "dy=\"0.35em\" text-anchor=\"{}\" fill=\"{}\"{}>{}</text></svg>\n",
                 area.x, area.y, area.width, area.height, x, anchor, colorText(color),
                 weight == TextWeight::kSemiBold ? " font-weight=\"600\"" : "", escaped(text));
}

}  // namespace tabelion

#include "ui/font.hpp"

namespace korvo::ui {

std::string_view weightName(FontWeight weight) {
  switch (weight) {
    case FontWeight::ultraLight:
      return "ultraLight";
    case FontWeight::thin:
      return "thin";
    case FontWeight::light:
      return "light";
    case FontWeight::regular:
      return "regular";
    case FontWeight::medium:
      return "medium";
    case FontWeight::semibold:
      return "semibold";
    case FontWeight::bold:
      return "bold";
    case FontWeight::heavy:
      return "heavy";
    case FontWeight::black:
      return "black";
  }
  return "regular";
}

std::string_view designName(FontDesign design) {
  switch (design) {
    case FontDesign::standard:
      return "default";
    case FontDesign::rounded:
      return "rounded";
    case FontDesign::monospaced:
      return "monospaced";
    case FontDesign::serif:
      return "serif";
  }
  return "default";
}

int numericWeight(FontWeight weight) {
  switch (weight) {
    case FontWeight::ultraLight:
      return 100;
    case FontWeight::thin:
      return 200;
    case FontWeight::light:
      return 300;
    case FontWeight::regular:
      return 400;
    case FontWeight::medium:
      return 500;
    case FontWeight::semibold:
      return 600;
    case FontWeight::bold:
      return 700;
    case FontWeight::heavy:
      return 800;
    case FontWeight::black:
      return 900;
  }
  return 400;
}

}  // namespace korvo::ui

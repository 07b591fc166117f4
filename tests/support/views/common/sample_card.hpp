#pragma once

#include "base/date.hpp"
#include "ui/environment.hpp"
#include "ui/view.hpp"
#include "views/common/widget_backdrop.hpp"
#include "views/common/widget_meter.hpp"

namespace korvo::testing_support {

// A card shaped like the memory widget, to look at and to time: header label, large rounded
// figure, meter, detail line, live footer, and in the medium family a detail column with a link.
inline ui::View sampleCard(const ui::Environment& environment) {
  using namespace ui;
  const Palette palette = environment.palette();
  const View primary = vstack(
      HorizontalAlignment::leading, 6,
      {label("MEMORY", "memorychip")
           .font(Font::system(10, FontWeight::semibold))
           .tracking(1)
           .foregroundStyle(palette.secondary),
       text("58%")
           .font(Font::system(40, FontWeight::medium, FontDesign::rounded).withMonospacedDigits())
           .lineLimit(1)
           .minimumScaleFactor(0.7),
       WidgetMeter{.fraction = 0.58, .tint = palette.orange}
           .body(environment)
           .accessibilityLabel("Memory used")
           .accessibilityValue("58 percent"),
       text("9.3 GB of 16.0 GB")
           .font(Font::caption2())
           .foregroundStyle(palette.secondary)
           .lineLimit(1)
           .minimumScaleFactor(0.7),
       spacer(),
       hstack(VerticalAlignment::center, 3,
              {text("Updated"), relativeDate(environment.now.addingSeconds(-240)), text("ago")})
           .font(Font::system(9))
           .foregroundStyle(palette.secondary)
           .minimumScaleFactor(0.7)});
  std::vector<View> row{primary};
  if (environment.family == WidgetFamily::systemMedium) {
    row.push_back(divider());
    row.push_back(
        vstack(HorizontalAlignment::leading, 8,
               {text("6.7 GB available").font(Font::subheadline().withWeight(FontWeight::semibold)),
                text("Elevated pressure").font(Font::caption()).foregroundStyle(palette.secondary),
                hstack({text("Apps"), spacer(), text("5.1 GB")}),
                hstack({text("Wired"), spacer(), text("2.2 GB")}),
                link("korvo://awake", label("Keep Awake", "cup.and.saucer.fill"))
                    .font(Font::caption().withWeight(FontWeight::semibold))
                    .foregroundStyle(palette.teal)})
            .font(Font::system(10))
            .foregroundStyle(palette.secondary)
            .frame({.maxWidth = infinity, .alignment = Alignment::leading()}));
  }
  const View content = hstack(VerticalAlignment::center, 20, row).widgetURL("korvo://resources");
  const View backdrop = WidgetBackdrop{}.body(environment);
  if (environment.hostSuppliesContainerBackground) return content.containerBackground(backdrop);
  return content.padding(16).background(backdrop);
}

}  // namespace korvo::testing_support

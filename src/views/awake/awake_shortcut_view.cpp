#include "views/awake/awake_shortcut_view.hpp"

#include "base/text.hpp"
#include "shared/dashboard_tab.hpp"
#include "shared/deep_link.hpp"
#include "views/common/widget_backdrop.hpp"

namespace korvo {

using ui::Font;
using ui::FontDesign;
using ui::FontWeight;

ui::View AwakeShortcutView::body(const ui::Environment& environment) const {
  const ui::Palette palette = environment.palette();
  const ui::View symbols = ui::hstack({
      ui::symbol("cup.and.saucer.fill")
          .font(Font::system(28, FontWeight::light))
          .foregroundStyle(palette.teal)
          .accentable(),
      ui::spacer(),
      ui::symbol("arrow.up.right")
          .font(Font::caption().withWeight(FontWeight::semibold))
          .foregroundStyle(palette.secondary),
  });
  const ui::View content =
      ui::vstack(ui::HorizontalAlignment::leading, 10,
                 {
                     symbols,
                     ui::spacer(0),
                     ui::text(_("Keep Awake"))
                         .font(Font::system(20, FontWeight::semibold, FontDesign::rounded))
                         .foregroundStyle(palette.primary),
                     ui::text(_("Keep the work going.\nOpen session controls."))
                         .font(Font::caption())
                         .foregroundStyle(palette.secondary),
                 })
          .frame({.maxWidth = ui::infinity,
                  .maxHeight = ui::infinity,
                  .alignment = ui::Alignment::leading()})
          .widgetURL(deepLinkURL(rawValue(DashboardTab::awake)).string());
  const ui::View backdrop = WidgetBackdrop{}.body(environment);
  if (environment.hostSuppliesContainerBackground) return content.containerBackground(backdrop);
  return content.padding(16).background(backdrop);
}

}  // namespace korvo

#include "views/monitor/last_updated_footer.hpp"

#include "base/text.hpp"

namespace korvo {

bool LastUpdatedFooter::isStale() const {
  return now.secondsSince(dataMoment) > lastUpdatedStaleAfterSeconds;
}

ui::View LastUpdatedFooter::body(const ui::Environment& environment) const {
  return ui::hstack(ui::VerticalAlignment::center, 3,
                    {
                        ui::text(isStale() ? _("Stale ·") : _("Updated")),
                        ui::relativeDate(dataMoment),
                        ui::text(_("ago")),
                    })
      .font(ui::Font::system(9))
      .foregroundStyle(environment.palette().secondary)
      .minimumScaleFactor(0.7);
}

}  // namespace korvo

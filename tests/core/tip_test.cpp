// The tip of the day: the next one each time, while its user wants it.
#include "core/frmTip.h"

#include "core/settings.h"
#include "support/recording_shell.h"
#include "support/temp_home.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

const QString Last = QStringLiteral("DisplayedTipNum");

TEST(TipOfTheDay, GoesOnWhereItEndedAndStartsOver) {
    test::TempHome home;
    test::RecordingShell shell;
    const qint32 count = qint32(frmTip::tips().size());
    const struct {
        qint32 stored, shown;  // numbers from 1
    } rows[] = {{0, 1}, {1, 2}, {count - 1, count}, {count, 1}, {-3, 1}, {count + 5, 1}};
    for (const auto& row : rows) {
        writeSetting(Last, row.stored);
        shell.onScreen = [&](Screen& screen) {
            EXPECT_EQ(screen.caption(), u"Tip of the Day");
            EXPECT_EQ(dynamic_cast<frmTip&>(screen).lblTip, frmTip::tips()[row.shown - 1]);
        };
        frmTip().ShowUp();
        EXPECT_EQ(readSetting(Last), row.shown) << row.stored;
    }
    writeSetting(Last, 0);
    shell.onScreen = [](Screen& screen) {
        auto& tip = dynamic_cast<frmTip&>(screen);
        tip.cmdNextTip();
        EXPECT_EQ(tip.lblTip, frmTip::tips()[1]);
        EXPECT_FALSE(tip.chkShowAtStartup);
        tip.chkShowAtStartup_Click(true);
        tip.cmdClose();
        EXPECT_TRUE(tip.isClosed());
    };
    frmTip().ShowUp();
    EXPECT_EQ(readSetting(Last), 2);
    EXPECT_EQ(readSetting(QStringLiteral("ShowTipOfDay")), 1);
    shell.onScreen = [](Screen& screen) {
        auto& tip = dynamic_cast<frmTip&>(screen);
        EXPECT_TRUE(tip.chkShowAtStartup);
        tip.chkShowAtStartup_Click(false);
    };
    frmTip().ShowUp();
    EXPECT_FALSE(readBooleanSetting(QStringLiteral("ShowTipOfDay")));
}

}  // namespace
}  // namespace zov

// The main window's entries for the delivery records are there and enabled, and
// one opens its window over the main window.

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QTimer>

#include "ui/station_window_fixture.h"

namespace ovd::ui::testing {
namespace {

class RecordsMenuTest : public StationWindowTest {};

TEST_F(RecordsMenuTest, EntriesAreEnabledAndOpenTheirWindows) {
    window().render();
    for (const char* name :
         {"mnCompanyInfo", "mnCompInfo", "mnTranscribers", "mnemail", "mnPasswords", "mnDecrypt"}) {
        auto* entry = window().findChild<QAction*>(name);
        ASSERT_NE(entry, nullptr) << name;
        EXPECT_TRUE(entry->isEnabled()) << name;
    }
    QString opened;
    QTimer::singleShot(0, [&opened] {
        if (auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            opened = modal->objectName();
            modal->reject();
        }
    });
    window().findChild<QAction*>("mnDecrypt")->trigger();
    EXPECT_EQ(opened, "frmManuallyDecrypt");
}

}  // namespace
}  // namespace ovd::ui::testing

#include "e2e/AdminUser.h"

namespace {

const QString kOk = QStringLiteral("OK");

} // namespace

AdminUser::AdminUser(AppDriver &driver)
    : m_driver(driver)
{
}

bool AdminUser::openPanel()
{
    return m_driver.click(QStringLiteral("userList")) && m_driver.key(QStringLiteral("Ctrl+Shift+A")) &&
           m_driver.waitForWindow(QStringLiteral("Admin Panel"));
}

bool AdminUser::showTab(Tab tab)
{
    const QString tabs = QStringLiteral("adminTabs");
    const QString place = QStringLiteral("currentIndex");
    if (!m_driver.click(QStringLiteral("adminHeader")) || !m_driver.tabTo(QStringLiteral("qt_tabwidget_tabbar")))
        return false;
    const int wanted = static_cast<int>(tab);
    int shown = m_driver.property(tabs, place).toInt();
    while (shown != wanted) {
        const bool isLeft = shown > wanted;
        shown += isLeft ? -1 : 1;
        if (!m_driver.key(isLeft ? QStringLiteral("Left") : QStringLiteral("Right")) ||
            !m_driver.waitForProperty(tabs, place, shown))
            return false;
    }
    return true;
}

bool AdminUser::confirmBox(const QString &title, const QString &text, const QString &button)
{
    return m_driver.waitForBox(title, text) && m_driver.answer(button);
}

bool AdminUser::chooseFirstRow(const QString &list)
{
    return m_driver.tabTo(list) && m_driver.key(QStringLiteral("Ctrl+Home")) && m_driver.key(QStringLiteral("Space"));
}

bool AdminUser::findAccount(const QString &callsign)
{
    return showTab(Tab::AllUsers) && m_driver.click(QStringLiteral("allUsersSearch")) &&
           m_driver.key(QStringLiteral("Ctrl+A")) && m_driver.type(callsign) &&
           m_driver.click(QStringLiteral("refreshAllButton")) &&
           m_driver.waitForText(QStringLiteral("allUsersTotal"), QStringLiteral("Total: 1 users (filtered)")) &&
           chooseFirstRow(QStringLiteral("allUsersTable"));
}

bool AdminUser::approvePending()
{
    const QString total = QStringLiteral("pendingTotal");
    return showTab(Tab::Pending) && m_driver.click(QStringLiteral("refreshAllButton")) &&
           m_driver.waitForText(total, QStringLiteral("Total: 1 pending")) &&
           chooseFirstRow(QStringLiteral("pendingTable")) && m_driver.click(QStringLiteral("approveSelectedButton")) &&
           m_driver.waitForText(total, QStringLiteral("Total: 0 pending"));
}

bool AdminUser::editStatus(const QString &status)
{
    const QString combo = QStringLiteral("editStatusCombo");
    const QString approved = QStringLiteral("editApprovedCheck");
    if (!m_driver.tabTo(combo) || !m_driver.type(status) ||
        !m_driver.waitForProperty(combo, QStringLiteral("currentText"), status))
        return false;
    const bool isApproved = m_driver.property(approved, QStringLiteral("checked")).toBool();
    return isApproved || status != QLatin1String("active") ||
           (m_driver.click(approved) && m_driver.waitForProperty(approved, QStringLiteral("checked"), true));
}

bool AdminUser::setStatus(const QString &callsign, const QString &status)
{
    return findAccount(callsign) && m_driver.click(QStringLiteral("editActionButton")) &&
           m_driver.waitForWindow(QStringLiteral("Edit User - ") + callsign) && editStatus(status) &&
           m_driver.click(QStringLiteral("editSaveButton")) &&
           confirmBox(QStringLiteral("Success"), QStringLiteral("User updated successfully!"), kOk);
}

bool AdminUser::deleteAccount(const QString &callsign)
{
    return findAccount(callsign) && m_driver.click(QStringLiteral("deleteActionButton")) &&
           confirmBox(QStringLiteral("Delete User"),
                      QStringLiteral("Are you sure you want to delete this user?\n\nThis action cannot be undone!"),
                      QStringLiteral("Yes")) &&
           m_driver.waitForText(QStringLiteral("allUsersTotal"), QStringLiteral("Total: 0 users (filtered)"));
}

bool AdminUser::approveDevice(const QString &callsign)
{
    return showTab(Tab::HwidRequests) && chooseFirstRow(QStringLiteral("hwidRequestsList")) && m_driver.openMenu() &&
           m_driver.choose(QStringLiteral("Approve Reset HWID")) &&
           confirmBox(
               QStringLiteral("HWID Reset"),
               QStringLiteral("HWID untuk %1 berhasil direset.\nUser dapat login dari perangkat baru.").arg(callsign),
               kOk);
}

bool AdminUser::setAudioQuality(const QString &preset)
{
    return showTab(Tab::AudioQuality) && m_driver.click(QLatin1String("audioQuality_") + preset) &&
           m_driver.click(QStringLiteral("applyAudioQualityButton")) &&
           confirmBox(QStringLiteral("Audio Quality"), QStringLiteral("Audio quality set to: ") + preset, kOk);
}

bool AdminUser::actOnLastStation(const QString &choice)
{
    // Where no row is current, the first key leads to the first row, whatever key it is.
    return m_driver.click(QStringLiteral("userList")) && m_driver.key(QStringLiteral("Home")) &&
           m_driver.key(QStringLiteral("End")) && m_driver.openMenu() && m_driver.choose(choice);
}

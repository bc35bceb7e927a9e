#include "AllUsersRig.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>

AllUsersRig::AllUsersRig()
    : tab(std::make_unique<AllUsersTab>(prompts))
{
    AdminUsers::note(*tab, lines);
    const auto noteUser = [this](const char *what) {
        return [this, what](int userId) { lines += QLatin1String(what) + QString::number(userId); };
    };
    QObject::connect(tab.get(), &AllUsersTab::approveRequested, tab.get(), noteUser("approve "));
    QObject::connect(tab.get(), &AllUsersTab::revokeRequested, tab.get(), noteUser("revoke "));
    QObject::connect(tab.get(), &AllUsersTab::refreshRequested, tab.get(),
                     [this] { lines += QStringLiteral("refresh"); });
    tab->resize(880, 480);
    tab->show();
}

QStringList AllUsersRig::shownIds() const
{
    QStringList ids;
    for (int row = 0; row < table()->model()->rowCount(); ++row)
        ids += table()->model()->index(row, 0).data().toString();
    return ids;
}

QString AllUsersRig::chosenId() const
{
    const QModelIndexList rows = table()->selectionModel()->selectedRows();
    return rows.isEmpty() ? QStringLiteral("none") : rows.first().data().toString();
}

void AllUsersRig::choose(int userId) const
{
    table()->selectRow(shownIds().indexOf(QString::number(userId)));
}

void AllUsersRig::trigger(const QString &action) const
{
    tab->findChild<QAction *>(action)->trigger();
    QCoreApplication::sendPostedEvents(tab.get(), QEvent::MetaCall);
}

QPoint AllUsersRig::rowButton(int row, UserActionsDelegate::Button button) const
{
    const QModelIndex cell = table()->model()->index(row, table()->model()->columnCount() - 1);
    table()->scrollTo(cell);
    return UserActionsDelegate::area(button, table()->visualRect(cell)).center();
}

void AllUsersRig::addGateway(const QString &callsign, bool approved)
{
    find<QPushButton>("addGatewayButton")->click();
    auto *dialog = find<QDialog>("addGatewayDialog");
    const auto enter = [dialog](const char *name, const QString &text) {
        dialog->findChild<QLineEdit *>(QLatin1String(name))->setText(text);
    };
    enter("addCallsignEdit", callsign);
    enter("addGatewayNameEdit", QStringLiteral("Satu"));
    enter("addPicNameEdit", QStringLiteral("Ani"));
    enter("addPasswordEdit", QStringLiteral("pw%2"));
    dialog->findChild<QAbstractButton *>(QStringLiteral("addApprovedCheck"))->setChecked(approved);
    prompts.accept();
    dialog->findChild<QPushButton *>(QStringLiteral("addGatewaySubmitButton"))->click();
    QCoreApplication::sendPostedEvents(dialog, QEvent::DeferredDelete);
}

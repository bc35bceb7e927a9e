#include "RoomRig.h"

#include "ui/room/UserWidget.h"

#include <QLabel>
#include <QTest>

QVariantMap RoomRig::user(int id, const QString &callsign, const QString &name, bool transmitting, bool approved,
                          bool muted)
{
    return {{QStringLiteral("user_id"), id},
            {QStringLiteral("callsign"), callsign},
            {QStringLiteral("name"), name.isEmpty() ? callsign : name},
            {QStringLiteral("is_transmitting"), transmitting},
            {QStringLiteral("approved"), approved},
            {QStringLiteral("is_muted"), muted}};
}

RoomRig::Users RoomRig::users(const QString &callsigns)
{
    Users result;
    for (const QString &callsign : callsigns.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        result += user(callsign.at(0).unicode(), callsign);
    return result;
}

QListWidget *RoomRig::list(const QWidget &panel)
{
    return part<QListWidget>(panel, "userList");
}

UserWidget *RoomRig::rowWidget(const QWidget &panel, int row)
{
    return qobject_cast<UserWidget *>(list(panel)->itemWidget(list(panel)->item(row)));
}

QStringList RoomRig::callsigns(const QWidget &panel)
{
    QStringList result;
    for (int row = 0; row < list(panel)->count(); ++row)
        result += rowWidget(panel, row) ? rowWidget(panel, row)->callsign() : QStringLiteral("(no row)");
    return result;
}

QStringList RoomRig::state(const QWidget &panel)
{
    QStringList result;
    for (int row = 0; row < list(panel)->count(); ++row) {
        const QListWidgetItem *item = list(panel)->item(row);
        QStringList parts{QString::number(rowWidget(panel, row)->userId()),
                          item->background().color().name(QColor::HexArgb),
                          item->foreground().color().name(),
                          item->font().toString(),
                          rowWidget(panel, row)->styleSheet(),
                          QString::number(item->sizeHint().height())};
        for (const int role : {2, 3, 5})
            parts += item->data(Qt::UserRole + role).toString();
        for (const QLabel *label : rowWidget(panel, row)->findChildren<QLabel *>())
            parts += label->text() + QLatin1Char('/') + label->toolTip();
        result += parts.join(QLatin1Char('|'));
    }
    return result;
}

QPoint RoomRig::middleOf(const QWidget &panel, int row)
{
    return list(panel)->visualItemRect(list(panel)->item(row)).center();
}

void RoomRig::show(QWidget &panel)
{
    panel.resize(420, 560);
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
}

#pragma once

#include "ui/admin/RoomLimits.h"

#include <QStringList>
#include <QWidget>

class Prompts;
class QLabel;
class QListWidget;
class QPushButton;
class QSpinBox;
class ToldEdit;

/// The server's rooms: their order, their names and how many users each takes. An order that was changed is kept when
/// the server sends its list again, until that list has come in this order. Every change of a room sends a limit: the
/// one that the server has told, or else one that is proposed, with a word that saving sets it.
class RoomsTab final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RoomsTab)

public:
    static constexpr int kMostUsers = 10000; ///< in a room; 0 stands for no limit

    explicit RoomsTab(Prompts &prompts, QWidget *parent = nullptr);

    /// In the order of the list.
    [[nodiscard]] QStringList rooms() const;

public slots:
    /// The selected room stays selected as long as it is there.
    void showRooms(const QStringList &rooms);
    /// How many users the rooms take; those that are not among them are not known.
    void showLimits(const RoomLimits::Map &limits);
    void onAddRoom();
    void onDeleteRoom();
    /// Sends what "Room Details" says of the selected room.
    void onEditRoom();
    void onSaveRoomOrder();

signals:
    void commandRequested(const QString &line);
    void refreshRequested();

private:
    [[nodiscard]] QWidget *createOrder();
    [[nodiscard]] QWidget *createDetails();
    [[nodiscard]] QString selectedRoom() const;
    [[nodiscard]] bool isReordered() const;
    void moveSelected(int by);
    void fill(const QStringList &rooms, const QString &selected);
    void onOrderChanged();
    void showOrderSaved();
    void showDetails();
    void showMaximum(int users);
    void showLimitHint();

    struct Renaming
    {
        QString from;
        QString to;
    };

    Prompts &m_prompts;
    QStringList m_saved; ///< the server's order
    QStringList m_sent;  ///< the order that the server was asked for, until its next list
    RoomLimits::Map m_limits;
    QString m_edited;       ///< the room that the details are of
    int m_shownMaximum = 0; ///< its limit before the operator changes it
    Renaming m_renaming;    ///< asked for; the server's next list shows whether it came about
    QListWidget *m_list = nullptr;
    QPushButton *m_delete = nullptr;
    QLabel *m_orderStatus = nullptr;
    QLabel *m_hint = nullptr;
    QWidget *m_fields = nullptr;
    ToldEdit *m_name = nullptr;
    QSpinBox *m_maximum = nullptr;
    QLabel *m_limitHint = nullptr;
};

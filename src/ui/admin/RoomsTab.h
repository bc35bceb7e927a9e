#pragma once

#include <QHash>
#include <QStringList>
#include <QWidget>

class Prompts;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QSpinBox;

/// The server's rooms: their order, their names and how many users each takes. An order that was changed and not saved
/// yet is kept when the server sends its list again.
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
    void onOrderChanged();
    void showDetails();

    Prompts &m_prompts;
    QStringList m_saved;            ///< the server's order
    QHash<QString, int> m_maximums; ///< what this panel told the server; it never says itself
    QString m_edited;               ///< the room that the details are of
    QString m_renamedTo;            ///< what the last edited room is called when the server sends its list again
    QListWidget *m_list = nullptr;
    QPushButton *m_delete = nullptr;
    QLabel *m_orderStatus = nullptr;
    QLabel *m_hint = nullptr;
    QWidget *m_fields = nullptr;
    QLineEdit *m_name = nullptr;
    QSpinBox *m_maximum = nullptr;
};

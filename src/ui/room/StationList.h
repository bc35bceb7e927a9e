#pragma once

#include <QListWidget>
#include <QMap>
#include <QVector>

class UserWidget;

/// The rows of the room panel, one UserWidget per callsign. Selection and scroll position stay with their stations.
class StationList final : public QListWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(StationList)

public:
    /// Item data that the list writes with each state.
    enum ItemRole {
        ApprovedRole = Qt::UserRole + 2,
        MutedRole = Qt::UserRole + 3,
        TransmittingRole = Qt::UserRole + 5
    };

    struct Station
    {
        QString callsign;
        QString displayName;
        int userId = 0;
        bool isSelf = false;
    };

    explicit StationList(QWidget *parent = nullptr);

    [[nodiscard]] UserWidget *userWidget(const QString &callsign) const; ///< nullptr when it is not listed
    [[nodiscard]] UserWidget *userWidget(const QListWidgetItem *item) const;

    /// Lists exactly these stations in this order; callsigns must be unique. Rows that are right already stay, with
    /// their speaker mark reset as a new row's would be; the other states are for setState() to set.
    void setStations(const QVector<Station> &stations);
    void clearStations();
    /// Does nothing for a callsign that is not listed.
    void setState(const QString &callsign, bool transmitting, bool muted, bool approved);

private:
    struct View;
    struct Row
    {
        QListWidgetItem *item = nullptr;
        UserWidget *widget = nullptr;
    };

    [[nodiscard]] bool rowShows(int row, const Station &station) const;
    void writeState(QListWidgetItem *item, bool transmitting, bool muted, bool approved);
    [[nodiscard]] View view() const;
    void restore(const View &view);
    void arrange(const QVector<Station> &stations);
    void insertRow(int row, const Station &station);
    void removeRow(int row);

    QMap<QString, Row> m_rows; ///< by callsign
};

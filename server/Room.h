#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

class Session;

/// One room while the server runs: its members in order of arrival, its key and who talks.
struct Room
{
    static constexpr int kKeySize = 32; ///< bytes

    QString name;
    int maximum = 0; ///< members; 0: no limit
    QByteArray key;
    QVector<Session *> members;
    Session *talker = nullptr;
    qint64 talkingSince = 0; ///< milliseconds of the server's clock

    void renewKey();
    [[nodiscard]] bool isFull() const { return maximum > 0 && members.size() >= maximum; }
    [[nodiscard]] QString userList() const;      ///< the "USER_LIST" line
    [[nodiscard]] QString emptyUserList() const; ///< what it is for somebody who has left
    /// The "MOVED" line, for somebody whom that administrator brings into it.
    [[nodiscard]] QString movedLine(const QString &by) const;
};

#include "server/UdpRelay.h"

#include "net/protocol/AudioDatagram.h"

#include <QtEndian>

namespace {

constexpr int kCapacity = AudioDatagram::kHeaderSize + UdpRelay::kLargestPayload;
constexpr int kLongestControlText = 300; // bytes
constexpr int kBatch = 256;              // datagrams before the control connections get their turn
const QByteArray kTokenWord = QByteArrayLiteral("TOKEN:");

} // namespace

UdpRelay::UdpRelay(QObject *parent)
    : QObject(parent)
    , m_buffer(kCapacity, '\0')
{
    connect(&m_socket, &DatagramSocket::readyRead, this, &UdpRelay::relayWaiting);
}

UdpRelay::~UdpRelay()
{
    qDeleteAll(m_members);
    qDeleteAll(m_rooms);
}

bool UdpRelay::open(const QString &address, quint16 port, QString *error)
{
    return m_socket.bind(address, port, error);
}

bool UdpRelay::isBound(int userId) const
{
    const Member *member = m_members.value(userId);
    return member && !member->endpoint.isNull();
}

void UdpRelay::addMember(int userId, const QByteArray &token)
{
    removeMember(userId);
    auto *member = new Member;
    member->userId = userId;
    member->token = token;
    m_members.insert(userId, member);
    m_byToken.insert(token, member);
}

void UdpRelay::removeMember(int userId)
{
    Member *member = m_members.value(userId);
    if (!member)
        return;
    setRoom(userId, {});
    m_members.remove(userId);
    m_byToken.remove(member->token);
    m_byEndpoint.remove(member->endpoint);
    delete member;
}

void UdpRelay::setRoom(int userId, const QString &room)
{
    Member *member = m_members.value(userId);
    if (!member)
        return;
    if (Room *old = member->room) {
        old->members.removeOne(member);
        if (old->talker == member)
            old->talker = nullptr;
        if (old->members.isEmpty())
            delete m_rooms.take(member->roomName);
    }
    member->room = nullptr;
    member->roomName = room;
    if (room.isEmpty())
        return;
    Room *&entry = m_rooms[room];
    if (!entry)
        entry = new Room;
    entry->members.append(member);
    member->room = entry;
}

void UdpRelay::setTalker(const QString &room, int userId)
{
    Room *entry = m_rooms.value(room);
    Member *member = m_members.value(userId);
    if (entry)
        entry->talker = member && member->room == entry ? member : nullptr;
}

void UdpRelay::relayWaiting()
{
    Endpoint from;
    for (int i = 0; i < kBatch; ++i) {
        const int size = m_socket.receive(m_buffer.data(), kCapacity, &from);
        if (size < 0)
            return;
        if (size <= kCapacity)
            handle(size, from);
    }
}

void UdpRelay::handle(int size, const Endpoint &from)
{
    Member *member = m_byEndpoint.value(from);
    // Audio of a bound talker is the usual case; every word of the link begins with a capital letter, and an id that
    // large is not given out.
    const bool isText = size <= kLongestControlText && size > 0 && m_buffer.at(0) >= 'A' && m_buffer.at(0) <= 'Z';
    if (isText && handleControl(QByteArray::fromRawData(m_buffer.constData(), size), from))
        return;
    if (member && member->room && member->room->talker == member && size > AudioDatagram::kHeaderSize)
        forward(member, size);
}

bool UdpRelay::handleControl(const QByteArray &text, const Endpoint &from)
{
    const auto reply = [&](const QByteArray &word) { m_socket.send(word.constData(), word.size(), from); };
    if (text == "PING") {
        reply(QByteArrayLiteral("PONG"));
    } else if (text == "KEEPALIVE") {
        // Only to whom audio goes: a member whose address has changed, or whose token was lost, hears nothing and sets
        // the link up anew.
        if (m_byEndpoint.contains(from))
            reply(QByteArrayLiteral("KEEPALIVE_OK"));
    } else if (text.startsWith(kTokenWord)) {
        const int end = text.indexOf(':', kTokenWord.size());
        bindEndpoint(text.mid(kTokenWord.size(), end < 0 ? -1 : end - kTokenWord.size()), from);
    } else {
        return false;
    }
    return true;
}

void UdpRelay::bindEndpoint(const QByteArray &token, const Endpoint &from)
{
    Member *member = m_byToken.value(token);
    if (!member)
        return; // an unknown token gets no answer to learn from
    if (Member *before = m_byEndpoint.value(from))
        before->endpoint = {};
    m_byEndpoint.remove(member->endpoint);
    member->endpoint = from;
    m_byEndpoint.insert(from, member);
    const QByteArray reply = "REGISTERED:" + QByteArray::number(member->userId);
    m_socket.send(reply.constData(), reply.size(), from);
}

void UdpRelay::forward(Member *talker, int size)
{
    qToBigEndian(static_cast<quint32>(talker->userId), m_buffer.data()); // the sender's word does not count
    for (const Member *other : qAsConst(talker->room->members)) {
        if (other == talker || other->endpoint.isNull())
            continue;
        m_socket.send(m_buffer.constData(), size, other->endpoint);
        ++m_forwarded;
    }
}

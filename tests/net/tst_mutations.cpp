#include "HostileInput.h"
#include "support/TestMain.h"

#include <random>

// Hundreds of thousands of damaged lines and datagrams. The seed is fixed: a failure can be repeated.
class MutationsTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { HostileInput::watchDiagnostics(); }
    void cleanupTestCase() { qInstallMessageHandler(nullptr); }
    void lines();
    void datagrams();
};

namespace {

constexpr int kBatches = 20000;
constexpr int kPerBatch = 10; // 200,000 of each

const QList<QByteArray> &soundLines()
{
    static const QList<QByteArray> lines{
        "LOGIN_OK|token|x|True|42|x|Izin habis|||||||||session",
        "LOGIN_FAILED|Password salah",
        "REGISTER_OK|Registrasi berhasil",
        "REGISTER_FAILED|Callsign sudah terdaftar",
        "ROOMS|Lobby,Alpha,Bravo",
        "JOIN_OK|Lobby|AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=",
        "JOIN_FAILED|Room penuh",
        "LEAVE_OK",
        "MOVED|Alpha|YB1ABC|AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=",
        "USER_LIST|Lobby|1,2,3|YB1A,YH2B,YC3C|Ani,Budi,Cici|RX,TX,RX|1,1,0|0,0,1",
        "ONLINE_USERS|1,YB1A,Ani,Lobby,True;2,YH2B,Budi,Alpha,False;",
        "ADMIN_ALL_USERS|[{\"id\":1,\"callsign\":\"YB1A\",\"approved\":true},{\"id\":2}]",
        "ADMIN_PENDING|[{\"id\":3,\"name\":\"a|b\"}]",
        "USER_INFO|{\"callsign\":\"YB1A\"}",
        "USER_INFO_RESULT|{\"callsign\":\"YB1A\",\"note\":\"a|b\"}",
        "USER_PROFILE\r\n{\"callsign\":\"YB1A\",\"email\":\"\xc3\xa9@example.org\"}",
        "TX_START_OK",
        "TX_START_FAILED|Kanal sedang dipakai oleh YH2B",
        "TX_STOP_OK",
        "USER_CHANGE_PASSWORD_OK",
        "USER_CHANGE_PASSWORD_FAIL|Password lama salah|x",
        "USER_REQUEST_HWID_RESET_OK",
        "ADMIN_NOTIFICATION|HWID_RESET_REQUEST|YB1A|7",
        "MUTED|1|terlalu|keras",
        "ADMIN_RESET_HWID_OK|YB1A",
        "ADMIN_SET_ROOM_ORDER_OK",
        "ADMIN_CREATE_ROOM_OK|Delta",
        "ADMIN_KICK_OK",
        "SERVER_INFO|{\"online_users\":3,\"version\":\"4\"}",
        "AUDIO_QUALITY|standard|24000|24000|20|5",
        "ERROR|Tidak boleh",
        "KICKED|a|b",
        "BANNED|a|b",
        "PONG",
        "ROIP SERVER READY v4",
        "AUDIO 7 12\r\nabcdefghijkl",
    };
    return lines;
}

const QList<QByteArray> &soundDatagrams()
{
    static const QList<QByteArray> datagrams{"PONG",
                                             "TOKEN_OK",
                                             "OK",
                                             "REGISTERED:42",
                                             "KEEPALIVE_OK",
                                             QByteArray("\0\0\0\7payload", 11),
                                             QByteArray("\xff\xff\xff\xff\1", 5),
                                             QByteArray("\0\0\0\7", 4)};
    return datagrams;
}

class Mutator final
{
public:
    explicit Mutator(quint32 seed)
        : m_random(seed)
    {
    }

    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(m_random); }

    QByteArray mutated(const QList<QByteArray> &samples)
    {
        QByteArray bytes = samples.at(below(samples.size()));
        for (int rounds = below(5); rounds > 0; --rounds)
            mutate(bytes, samples);
        return bytes;
    }

private:
    void mutate(QByteArray &bytes, const QList<QByteArray> &samples)
    {
        // What the parsers look for, and numbers at the edges of their types.
        static const QList<QByteArray> pieces{"|",
                                              ",",
                                              ";",
                                              "\n",
                                              "\r\n",
                                              "\"",
                                              "{",
                                              "]",
                                              QByteArray(1, '\0'),
                                              "\xff\xfe",
                                              "AUDIO 1 3\r\n",
                                              "AUDIO 1 ",
                                              "-1",
                                              "2147483648",
                                              "-2147483649",
                                              "99999999999999999999",
                                              "REGISTERED:",
                                              " ",
                                              "||||||||||||||||||||"};
        const int at = below(bytes.size() + 1);
        switch (below(6)) {
        case 0: bytes.insert(at, pieces.at(below(pieces.size()))); break;
        case 1: bytes.remove(at, 1 + below(8)); break;
        case 2: bytes.truncate(at); break;
        case 3: bytes.insert(at, bytes.mid(below(bytes.size() + 1), below(40))); break;
        case 4: bytes.replace(at, below(4), samples.at(below(samples.size()))); break;
        default:
            if (at < bytes.size())
                bytes[at] = static_cast<char>(below(256));
        }
    }

    std::mt19937 m_random;
};

} // namespace

void MutationsTest::lines()
{
    Mutator mutator(20260530);
    for (int batch = 0; batch < kBatches; ++batch) {
        QByteArray bytes;
        for (int i = 0; i < kPerBatch; ++i)
            bytes += mutator.mutated(soundLines()) + "\r\n";
        const QString wrong = HostileInput::feedControlConnection(bytes, 1 + mutator.below(400));
        QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("batch %1: %2").arg(batch).arg(wrong)));
    }
    QVERIFY2(HostileInput::signalsRaised() > kBatches * kPerBatch / 2,
             qPrintable(QStringLiteral("too few lines were understood: %1").arg(HostileInput::signalsRaised())));
}

void MutationsTest::datagrams()
{
    Mutator mutator(20260531);
    for (int batch = 0; batch < kBatches; ++batch) {
        QList<QByteArray> datagrams;
        for (int i = 0; i < kPerBatch; ++i)
            datagrams.append(mutator.mutated(soundDatagrams()));
        const QString wrong = HostileInput::feedAudioLink(datagrams);
        QVERIFY2(wrong.isEmpty(), qPrintable(QStringLiteral("batch %1: %2").arg(batch).arg(wrong)));
    }
}

EVOX_TEST_MAIN(MutationsTest, QCoreApplication)
#include "tst_mutations.moc"

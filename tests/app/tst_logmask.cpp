#include "app/LogMask.h"
#include "support/TestMain.h"

class LogMaskTest final : public QObject
{
    Q_OBJECT

private slots:
    void keepsWhatTellsNothing_data();
    void keepsWhatTellsNothing();
    void masks_data();
    void masks();
    void secretNeverPasses_data();
    void secretNeverPasses();
    void isOneLine_data();
    void isOneLine();
    void longTextsAreCut();
    void halfASurrogatePairHidesNothing();
};

namespace {

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

const char *const kSecret = "s3cr3t-W0rd";
const char *const kToken = "8c1f04a5d2b94e7c8c1f04a5d2b94e7c";
const char *const kKey = "q83vEjRWeJCrze8SNFZ4kKvN7xI0VniQq83vEjRWeJA=";

} // namespace

void LogMaskTest::keepsWhatTellsNothing_data()
{
    QTest::addColumn<QString>("line");
    const auto row = [](const char *line) { QTest::newRow(line) << q(line); };
    row("[TCP] Connecting to radio.example.org 8080");
    row("[TCP] Login successful, user_id: 7 is_admin: false");
    row("[TCP] Password changed OK");
    row("[TCP] Unknown command: HALLO_DUNIA");
    row("[UDP]   token length: 32");
    row("[UDP] Sending TOKEN, length: 40");
    row("[UDP] TOKEN resent, length: 38");
    row("[UDP] Token confirmed: TOKEN_OK");
    row("[UDP] Token confirmed: OK");
    row("[UDP] No token confirmation, but continuing anyway");
    row("[UDP] KEEPALIVE_OK received - socket healthy");
    row("[UDP] sendAudio # 1 data size: 123 first 20 bytes: 000102030405060708090a0b0c0d0e0f10111213");
    row("[TX] encryptAudio # 1 raw size: 80 encrypted size: 120 key size: 32");
    row("[TX] Raw hex (first 40): "
        "000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f2021222324252627");
    row("[TX] Nonce (24): 000102030405060708090a0b0c0d0e0f1011121314151617");
    row("[RX] Raw hex (first 40 bytes): 00010203");
    row("[RX] Nonce (24 bytes): 000102030405060708090a0b0c0d0e0f1011121314151617");
    row("[RX] Decrypted hex (first 20): 000102030405060708090a0b0c0d0e0f10111213");
    row("[RX] Decrypt FAILED - wrong key or format");
    row("[Audio] Encryption key updated (playback continues)");
    row("[Audio] Output device set to: alsa_output.usb-Burr-Brown_from_TI_USB_Audio_CODEC-00.analog-stereo");
    row("[MainWindow] UDP healthy, resending token for new room...");
    row("[MainWindow] Login failed: Password salah");
    row("[MainWindow] Login failed: Callsign tidak terdaftar");
    row("[Prompts] Not shown again: Password Salah");
    row("[Main] HWID generated: 0123456789abcdef...");
    row("[Config] Saved to: /home/operator/.local/share/SINAR/e-VOX SINAR/config.json");
    row("[Opus] Loading: /usr/lib/x86_64-linux-gnu/evox-sinar/libs/libopus-0.so");
    row("[Serial] Connected to ttyUSB0 @ 9600 PTT: RTS COS: CTS");
    row("[Register] Response: REGISTER_OK|Registrasi berhasil");
    row("[Register] Response: REGISTER_FAILED|Callsign sudah terdaftar");
    row("[Register] Response: ");
    row("LOGIN_FAILED|Perangkat ini tidak terdaftar");
    row("USER_CHANGE_PASSWORD_OK");
    row("ADMIN_RESET_PASSWORD_OK|YH0AB");
    row("LOGIN");
    row("");
}

void LogMaskTest::keepsWhatTellsNothing()
{
    QFETCH(QString, line);
    QCOMPARE(LogMask::masked(line), line);
}

void LogMaskTest::masks_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("kept");
    const auto row = [](const char *name, const char *line, const char *kept) {
        QTest::newRow(name) << q(line) << q(kept);
    };
    row("registration",
        R"([Register] Sending: REGISTER_GATEWAY "RF-GW" "YH0AB" "145.5" "2030-01-01" "Jl. Satu" "Sari" "YB0ABC" "pw" "a@b" "08")",
        R"([Register] Sending: REGISTER_GATEWAY "RF-GW" "YH0AB" "145.5" "2030-01-01" "Jl. Satu" "Sari" "YB0ABC" "***" "a@b" "08")");
    row("registration with an empty password", R"(REGISTER_GATEWAY "a" "b" "" "" "" "" "" "" "" "")",
        R"(REGISTER_GATEWAY "a" "b" "" "" "" "" "" "***" "" "")");
    row("registration with a quote in the password", R"(REGISTER_GATEWAY "a" "b" "c" "d" "e" "f" "g" "p"w" "i" "j")",
        "REGISTER_GATEWAY ***");
    row("registration with a field too many", R"(REGISTER_GATEWAY "a" "b" "c" "d" "e" "f" "g" "p" "w" "i" "j")",
        "REGISTER_GATEWAY ***");
    row("registration without quotes", "REGISTER_GATEWAY a b c d e f g pw i j", "REGISTER_GATEWAY ***");
    row("registration repeated by the server",
        R"([Register] Response: ERROR|REGISTER_GATEWAY "a" "b" "c" "d" "e" "f" "g" "pw" "i" "j" unknown)",
        "[Register] Response: ERROR|REGISTER_GATEWAY ***");
    row("answer of no known form", "[Register] Response: selamat pw", "[Register] Response: ***");
    row("login", "LOGIN YH0AB pw", "LOGIN YH0AB ***");
    row("login with a device", "[TCP] Sending: LOGIN YH0AB pw 0123", "[TCP] Sending: LOGIN YH0AB ***");
    row("login without a callsign", "LOGIN pw", "LOGIN ***");
    row("login with quotes", R"(LOGIN "YH0AB" "pw")", "LOGIN ***");
    row("login with bars", "LOGIN|YH0AB|pw", "LOGIN|***");
    row("two logins", "LOGIN LOGIN YH0AB pw", "LOGIN LOGIN ***");
    row("login answer", "LOGIN_OK|tok|YH0AB|True|7|Sari", "LOGIN_OK|***");
    row("login answer in small letters", "login_ok|tok", "login_ok|***");
    row("login answer of an unknown form", "LOGIN_OK tok", "LOGIN_OK ***");
    row("change of password", R"(USER_CHANGE_PASSWORD "old" "new")", "USER_CHANGE_PASSWORD ***");
    row("reset of a password", R"(ADMIN_RESET_PASSWORD 7 "new")", "ADMIN_RESET_PASSWORD 7 ***");
    row("reset of a password without an id", R"(ADMIN_RESET_PASSWORD "new")", "ADMIN_RESET_PASSWORD ***");
    row("reset answered with the password", "ADMIN_RESET_PASSWORD_OK|YH0AB|new", "ADMIN_RESET_PASSWORD_OK|YH0AB|***");
    row("room key", "JOIN_OK|Lobby|abc=", "JOIN_OK|Lobby|***");
    row("room without a key, or a key without its room", "JOIN_OK|Lobby", "JOIN_OK|***");
    row("room without a name", "JOIN_OK||abc=", "JOIN_OK|***");
    row("moved", "MOVED|Lobby|YB0ADM|abc=", "MOVED|Lobby|YB0ADM|***");
    row("key message", "ROOM_KEY|abc=", "ROOM_KEY|***");
    row("session key message", "SESSION_KEY|abc=", "SESSION_KEY|***");
    row("beginning of a room key", "[TCP] JOIN_OK room: Lobby key: q83vEjRWeJCrze8S...",
        "[TCP] JOIN_OK room: Lobby key:***");
    row("beginning of a room key, in the window", "[MainWindow] Room key received: q83vEjRWeJCrze8S...",
        "[MainWindow] Room key received:***");
    row("token datagram", "[UDP] TOKEN content (first 50): TOKEN:abc:7", "[UDP] TOKEN content (first 50):***");
    row("token of another answer", "[UDP] Token confirmed: TOKEN_OK:abc", "[UDP] Token confirmed:***");
    row("JSON", R"({"callsign":"YH0AB","password":"pw","id":7})", R"({"callsign":"YH0AB","password":***)");
    row("JSON token", R"({"udp_token" : "abc"})", R"({"udp_token" :***)");
    row("assignment", "sessionKey=abc", "sessionKey=***");
    row("Indonesian", "Kata sandi: pw", "Kata sandi:***");
    row("password in a sentence", "the password pw is wrong", "the password ***");
    row("quoted password in a sentence", "password \"pw\" salah", "password \"***");
    row("token in a sentence", "[UDP] using token abc", "[UDP] using token ***");
    row("unknown word that is no word", "[TCP] Unknown command: x9+/", "[TCP] Unknown command: ***");
    row("bare token", "before 8c1f04a5d2b94e7c8c1f04a5d2b94e7c after", "before *** after");
    row("bare key", "before q83vEjRWeJCrze8SNFZ4kKvN7xI0VniQq83vEjRWeJA= after", "before *** after");
    row("harmless beginning only", "[UDP]   token length: 32 abc", "[UDP]   token length:***");
}

void LogMaskTest::masks()
{
    QFETCH(QString, line);
    QTEST(LogMask::masked(line), "kept");
    QCOMPARE(LogMask::masked(LogMask::masked(line)), LogMask::masked(line));
}

void LogMaskTest::secretNeverPasses_data()
{
    QTest::addColumn<QString>("carrier"); ///< %1: the secret
    const auto row = [](const char *carrier) { QTest::newRow(carrier) << q(carrier); };
    row("LOGIN YH0AB %1");
    row("LOGIN YH0AB %1 0123456789abcdef0123456789abcdef");
    row("LOGIN\tYH0AB\t%1");
    row("LOGIN\nYH0AB %1");
    row("REGISTER_GATEWAY \"a\" \"b\" \"c\" \"d\" \"e\" \"f\" \"g\" \"%1\" \"i\" \"j\"");
    row("REGISTER_GATEWAY \"a\" \"b\" \"c\" \"d\" \"e\" \"f\" \"g\" \"x\" \"%1\" \"i\" \"j\"");
    row("REGISTER_GATEWAY \"a\nb\" \"b\" \"c\" \"d\" \"e\" \"f\" \"g\" \"%1\" \"i\" \"j\"\r\n");
    row("USER_CHANGE_PASSWORD \"%1\" \"new\"");
    row("USER_CHANGE_PASSWORD \"old\" \"%1\"");
    row("ADMIN_RESET_PASSWORD 7 \"%1\"");
    row("LOGIN_OK|%1|YH0AB|True|7|Sari||||||||||");
    row("LOGIN_OK|t|YH0AB|True|7|Sari||||||||||%1");
    row("JOIN_OK|Lobby|%1");
    row("MOVED|Lobby|YB0ADM|%1");
    row("ROOM_KEY|%1");
    row("TOKEN:%1:7");
    row("TOKEN:%1");
    row("[Anything] password: %1");
    row("[Anything] new Password is %1");
    row("\"password\" : \"%1\"");
    row("https://host/?token=%1&x=1");
    row("Authorization: Bearer %1");
}

void LogMaskTest::secretNeverPasses()
{
    QFETCH(QString, carrier);
    for (const char *secret : {kSecret, kToken, kKey, "pw \" x", "***", "%1", "LOGIN a", "token"}) {
        const QString filler = q("isi");
        const QString line = q("[Tag] ") + QString(carrier).replace(q("%1"), q("\u00abisi\u00bb") + q(secret)) + filler;
        QVERIFY2(!LogMask::masked(line).contains(q("\u00abisi\u00bb")), qPrintable(LogMask::masked(line)));
    }
}

void LogMaskTest::isOneLine_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("line");
    QTest::newRow("line feeds") << q("one\ntwo\n") << q("one\\ntwo\\n");
    QTest::newRow("carriage return") << q("one\r\ntwo") << q("one\\r\\ntwo");
    QTest::newRow("tab") << q("one\ttwo") << q("one\\ttwo");
    QTest::newRow("terminal escape") << q("\x1b[31mred") << q(" [31mred");
    QTest::newRow("NUL") << QString(QChar(0)) << q(" ");
    QTest::newRow("other line ends") << q("a\u0085b\u2028c\u2029d") << q("a b c d");
    QTest::newRow("letters") << q("Stasiun Bukit \u00b0 \u65e5\u672c \U0001F4FB")
                             << q("Stasiun Bukit \u00b0 \u65e5\u672c \U0001F4FB");
}

void LogMaskTest::isOneLine()
{
    QFETCH(QString, message);
    QTEST(LogMask::oneLine(message), "line");
    QTEST(LogMask::masked(message), "line");
}

void LogMaskTest::longTextsAreCut()
{
    const QString words = q("kata ").repeated(LogMask::kLongestLine);
    const QString line = LogMask::masked(words);
    QVERIFY(line.size() <= LogMask::kLongestLine + 3);
    QVERIFY(line.size() > LogMask::kLongestLine - 10);
    QVERIFY(line.endsWith(q(" ...")));
    // What the cut would leave of a key is too short to be taken for one.
    const QString filled = QString(LogMask::kLongestLine - 20, QLatin1Char('.')) + q(kKey);
    QVERIFY(!LogMask::masked(filled).contains(q("q83v")));
    const QString registration = q("REGISTER_GATEWAY ") + q("\"isi\" ").repeated(LogMask::kLongestLine);
    QCOMPARE(LogMask::masked(registration), q("REGISTER_GATEWAY ***"));
}

void LogMaskTest::halfASurrogatePairHidesNothing()
{
    const QString line = LogMask::masked(QString(QChar(0xD83D)) + q(" password: ") + q(kSecret));
    QVERIFY(!line.contains(q(kSecret)));
    QVERIFY(line.contains(q("password")));
}

EVOX_TEST_MAIN(LogMaskTest, QCoreApplication)
#include "tst_logmask.moc"

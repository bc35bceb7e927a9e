#include "app/LogMask.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <array>

namespace {

/// How the parts behind a word are told from each other.
enum class Separator { Blank, Bar };

/// A word of the protocol whose line carries a secret.
struct SecretWord
{
    const char *word;
    Separator separator;
    int kept;      ///< parts behind the word that are no secret
    bool mustGoOn; ///< further parts must follow: a lone part may be the secret itself
};

constexpr std::array kSecretWords{
    SecretWord{"LOGIN", Separator::Blank, 1, true}, // callsign, then password and device
    SecretWord{"USER_CHANGE_PASSWORD", Separator::Blank, 0, false},
    SecretWord{"ADMIN_RESET_PASSWORD", Separator::Blank, 1, true}, // user id
    SecretWord{"LOGIN_OK", Separator::Bar, 0, false},
    SecretWord{"JOIN_OK", Separator::Bar, 1, true}, // room
    SecretWord{"MOVED", Separator::Bar, 2, true},   // room and administrator
    SecretWord{"ROOM_KEY", Separator::Bar, 0, false},
    SecretWord{"SESSION_KEY", Separator::Bar, 0, false},
    SecretWord{"ADMIN_RESET_PASSWORD_OK", Separator::Bar, 1, false}, // callsign
};

constexpr int kPasswordField = 7; ///< of the registration's ten, counted from 0
constexpr int kRegistrationFields = 10;

QString mask()
{
    return QStringLiteral("***");
}

bool isWordCharacter(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('_');
}

bool isOpaque(QChar c)
{
    return isWordCharacter(c) || QStringLiteral("+/=-").contains(c);
}

/// The index behind the parts that may be kept, or -1 when the text has not the shape to tell.
int endOfKept(const QString &text, int start, const SecretWord &secret)
{
    const QChar separator = secret.separator == Separator::Bar ? QLatin1Char('|') : QLatin1Char(' ');
    int at = start;
    for (int part = 0; part < secret.kept; ++part) {
        if (at >= text.size() || text.at(at) != separator)
            return -1;
        const int begin = at + 1;
        const int next = text.indexOf(separator, begin);
        at = next < 0 ? text.size() : next;
        const bool isQuoted =
            secret.separator == Separator::Blank && text.mid(begin, at - begin).contains(QLatin1Char('"'));
        if (at == begin || isQuoted)
            return -1;
    }
    return secret.mustGoOn && at >= text.size() ? -1 : at;
}

/// Cuts the line behind the first mention of the word that is followed by something.
void cutBehind(const SecretWord &secret, QString *line)
{
    const QString word = QLatin1String(secret.word);
    const auto sensitivity = secret.separator == Separator::Bar ? Qt::CaseInsensitive : Qt::CaseSensitive;
    for (int at = line->indexOf(word, 0, sensitivity); at >= 0; at = line->indexOf(word, at + 1, sensitivity)) {
        const int end = at + word.size();
        if (end >= line->size() || isWordCharacter(line->at(end)))
            continue; // nothing behind it, or a longer word
        if (secret.separator == Separator::Bar && secret.kept > 0 && line->at(end) != QLatin1Char('|'))
            continue; // the program's own line about the message
        const int kept = endOfKept(*line, end, secret);
        if (kept == line->size())
            continue;
        const int from = kept < 0 ? end : kept;
        *line = line->left(from) + line->at(from) + mask();
        return;
    }
}

/// The ten quoted fields of a registration without the password; nothing of them where they are not ten.
void maskRegistration(QString *line)
{
    const QString word = QStringLiteral("REGISTER_GATEWAY");
    const int start = line->indexOf(word);
    if (start < 0 || start + word.size() == line->size())
        return;
    const int begin = start + word.size();
    // There is no escaping, so a quote inside a field makes more pieces than this: " … " " … " and so on.
    QStringList pieces = line->mid(begin).split(QLatin1Char('"'));
    bool isWhole = pieces.size() == 2 * kRegistrationFields + 1 && pieces.last().trimmed().isEmpty();
    for (int i = 0; isWhole && i < pieces.size() - 1; i += 2)
        isWhole = pieces.at(i) == QLatin1String(" ");
    if (isWhole) {
        pieces[2 * kPasswordField + 1] = mask();
        *line = line->left(begin) + pieces.join(QLatin1Char('"'));
    } else {
        *line = line->left(begin) + QLatin1Char(' ') + mask();
    }
}

/// "password: …", "udp_token":"…", "key=…", "TOKEN:…" and "password …": what follows the name is cut, but not the words
/// with which the program itself goes on.
void maskNamedValues(QString *line)
{
    static const QRegularExpression assigned(
        QStringLiteral("(?:pass(?:word|wd|phrase|code)|sandi|pwd|token|secret|credential|authorization|key(?![a-z]))"
                       "[^:=]{0,40}[:=]"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression followed(
        QStringLiteral("(?:pass(?:word|wd|phrase|code)|sandi|pwd|token|secret|credential|authorization|key(?![a-z]))s?"
                       "[\\s\"'(>,-]+(?=[^\\s\"'(>,:=-])"
                       "(?!(?:salah|changed|change|berhasil|gagal|tidak|belum|harus|untuk|for|confirmation|confirmed|"
                       "content|length|resent|updated|received|or|and|dan|atau)\\b|(?:\\d+ )?\\*\\*\\*)"),
        QRegularExpression::CaseInsensitiveOption);
    for (const QRegularExpression *rule : {&assigned, &followed}) {
        const QRegularExpressionMatch match = rule->match(*line);
        if (match.hasMatch())
            *line = line->left(match.capturedEnd()) + mask();
    }
}

/// Long runs of letters and digits that name nothing: tokens, device identifiers, keys in Base64.
void maskOpaqueRuns(QString *line)
{
    static const QRegularExpression base64(QStringLiteral("(?<![A-Za-z0-9+/])[A-Za-z0-9+/]{42,}+={1,2}"));
    static const QRegularExpression token(
        QStringLiteral("(?<![A-Za-z0-9])(?=[A-Za-z]*[0-9])(?=[0-9]*[A-Za-z])[A-Za-z0-9]{32,}"));
    line->replace(base64, mask());
    line->replace(token, mask());
}

/// Two lines repeat what a server sent: it is kept where it is of a known form.
void maskForeignText(QString *line)
{
    static const QRegularExpression unknownWord(QStringLiteral("(\\[TCP\\] Unknown command: )(?![A-Za-z_]{1,40}$).+"));
    static const QRegularExpression answer(QStringLiteral(
        "(\\[Register\\] Response: )(?!(?:ROIP SERVER READY[^|]*)?(?:REGISTER_OK|REGISTER_FAILED|ERROR)\\|).+"));
    line->replace(unknownWord, QStringLiteral("\\1***"));
    line->replace(answer, QStringLiteral("\\1***"));
}

/// Lines that the rules would spoil although they hold numbers and enciphered audio only.
bool isHarmless(const QString &line)
{
    static const QRegularExpression shapes(QStringLiteral(
        "^(?:\\[UDP\\]   token length: \\d+"
        "|\\[UDP\\] Sending TOKEN, length: \\d+"
        "|\\[UDP\\] TOKEN resent, length: \\d+"
        "|\\[UDP\\] Token confirmed: (?:TOKEN_)?OK"
        "|\\[TX\\] encryptAudio # ?\\d+ raw size: \\d+ encrypted size: \\d+ key size: \\d+"
        "|\\[UDP\\] sendAudio # ?\\d+ data size: \\d+ first 20 bytes: [0-9a-f]{0,40}"
        "|\\[[TR]X\\] (?:Raw hex|Nonce|Decrypted hex) \\((?:first )?\\d+(?: bytes)?\\): [0-9a-f]{0,80})$"));
    return shapes.match(line).hasMatch();
}

/// A text that is cut must not show the beginning of a secret that the cut has made unrecognisable.
QString bounded(const QString &text)
{
    if (text.size() <= LogMask::kLongestLine)
        return text;
    int size = LogMask::kLongestLine;
    while (size > 0 && isOpaque(text.at(size - 1)))
        --size;
    return text.left(size) + QStringLiteral("...");
}

} // namespace

QString LogMask::oneLine(const QString &message)
{
    QString line = message.left(2 * kLongestLine);
    line.replace(QLatin1Char('\n'), QLatin1String("\\n"));
    line.replace(QLatin1Char('\r'), QLatin1String("\\r"));
    line.replace(QLatin1Char('\t'), QLatin1String("\\t"));
    std::replace_if(
        line.begin(), line.end(),
        [](QChar c) {
            return c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line ||
                   c.category() == QChar::Separator_Paragraph;
        },
        QLatin1Char(' '));
    if (std::any_of(line.cbegin(), line.cend(), [](QChar c) { return c.isSurrogate(); }))
        line = QString::fromUtf8(line.toUtf8()); // halves of pairs would make every rule fail
    return line;
}

QString LogMask::masked(const QString &message)
{
    QString line = bounded(oneLine(message));
    if (isHarmless(line))
        return line;
    maskRegistration(&line);
    for (const SecretWord &secret : kSecretWords)
        cutBehind(secret, &line);
    maskForeignText(&line);
    maskNamedValues(&line);
    maskOpaqueRuns(&line);
    return line;
}

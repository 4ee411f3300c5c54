// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/ExecLine.h"

#include <QRegularExpression>

#include <algorithm>
#include <initializer_list>

namespace {

bool isOneOf(const QString& name, std::initializer_list<const char*> names)
{
    return std::any_of(names.begin(), names.end(),
                       [&](const char* candidate) { return name == QLatin1String(candidate); });
}

QString lastPart(const QString& path)
{
    return path.section(QLatin1Char('/'), -1);
}

/// Programs that start the one named after them and take its place.
bool startsAnother(const QString& name)
{
    return isOneOf(name, {"env", "pkexec", "nice", "ionice", "nohup", "setsid", "dbus-run-session",
                          "optirun", "primusrun", "gamemoderun", "mangohud"});
}

/// The first word from `at` on that is neither an option, nor an option's value, nor an assignment.
qsizetype pastOptions(const QStringList& words, qsizetype at)
{
    while (at < words.size()) {
        const QString& word = words.at(at);
        if (!word.startsWith(QLatin1Char('-')) && !word.contains(QLatin1Char('='))) {
            break;
        }
        at += isOneOf(word, {"-u", "-C", "-n", "-c"}) ? 2 : 1;
    }
    return at;
}

bool isInterpreter(const QString& name)
{
    static const QRegularExpression versioned(
        QStringLiteral("^(python|pypy|perl|ruby|node|nodejs|lua|luajit|php|java|electron|wine|gjs)"
                       "[0-9.]*(-stable|64)?$"));
    return isOneOf(name, {"sh", "bash", "dash", "zsh", "mono", "cinnamon-xlet-settings", "qml",
                          "javaws", "gksu", "kdesu", "xdg-open", "gio", "gtk-launch"}) ||
           versioned.match(name).hasMatch();
}

/// The program that "flatpak run --command=name ... id" starts inside the sandbox.
QString sandboxedCommand(const QStringList& arguments)
{
    const QString option = QStringLiteral("--command=");
    for (const QString& argument : arguments) {
        if (argument.startsWith(option)) {
            return lastPart(argument.mid(option.size()));
        }
    }
    return {};
}

class Splitter
{
public:
    void feed(QChar letter)
    {
        if (m_escaped) {
            m_word += letter;
            m_escaped = false;
        } else if (letter == QLatin1Char('\\')) {
            m_escaped = true;
        } else if (letter == QLatin1Char('"')) {
            m_quoted = !m_quoted;
            m_hasWord = true;
        } else if (letter.isSpace() && !m_quoted) {
            endWord();
        } else {
            m_word += letter;
        }
    }

    QStringList finish()
    {
        endWord();
        return m_quoted ? QStringList() : m_words;
    }

private:
    void endWord()
    {
        if (m_hasWord || !m_word.isEmpty()) {
            m_words.append(m_word);
        }
        m_word.clear();
        m_hasWord = false;
    }

    QStringList m_words;
    QString m_word;
    bool m_quoted = false;
    bool m_escaped = false;
    bool m_hasWord = false; ///< Quotes make a word even of nothing.
};

/// `word` with "%%" as one percent sign; null where it is nothing but a field code.
QString withoutFieldCodes(const QString& word)
{
    QString result;
    for (qsizetype i = 0; i < word.size(); ++i) {
        if (word.at(i) != QLatin1Char('%')) {
            result += word.at(i);
        } else if (++i < word.size() && word.at(i) == QLatin1Char('%')) {
            result += QLatin1Char('%');
        }
    }
    return result;
}

} // namespace

QStringList ExecLine::words(const QString& exec)
{
    Splitter splitter;
    for (const QChar letter : exec) {
        splitter.feed(letter);
    }
    QStringList result;
    for (const QString& word : splitter.finish()) {
        const QString text = withoutFieldCodes(word);
        if (word.isEmpty() || !text.isEmpty()) {
            result.append(text);
        }
    }
    return result;
}

ExecLine::Program ExecLine::program(const QStringList& words)
{
    qsizetype at = 0;
    while (at < words.size() && startsAnother(lastPart(words.at(at)))) {
        at = pastOptions(words, at + 1);
    }
    if (at >= words.size() || isInterpreter(lastPart(words.at(at)))) {
        return {};
    }
    const QStringList arguments = words.mid(at + 1);
    if (lastPart(words.at(at)) == QLatin1String("flatpak")) {
        return {.name = sandboxedCommand(arguments), .isSandboxed = true};
    }
    return {.name = words.at(at), .hasArguments = !arguments.isEmpty()};
}

QString ExecLine::quoted(const QString& argument)
{
    QString text;
    for (const QChar letter : argument) {
        if (letter == QLatin1Char('"') || letter == QLatin1Char('`') ||
            letter == QLatin1Char('$') || letter == QLatin1Char('\\')) {
            text += QLatin1Char('\\');
        } else if (letter == QLatin1Char('%')) {
            text += QLatin1Char('%');
        }
        text += letter;
    }
    return QLatin1Char('"') + text + QLatin1Char('"');
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/keyboard/KeyboardLayouts.h"

#include "base/KeyNames.h"
#include "storage/Settings.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QInputMethod>

#include <algorithm>
#include <array>
#include <string_view>

namespace {

// Where rows and blocks begin, in key units.
constexpr double DigitRow = 1.25;
constexpr double UpperRow = 2.25;
constexpr double HomeRow = 3.25;
constexpr double LowerRow = 4.25;
constexpr double SpaceRow = 5.25;
constexpr double Navigation = 15.25;
constexpr double Keypad = 18.5;

constexpr double LettersEnd = 15;

enum class Form
{
    Ansi,
    Iso,
};

/// The legends of one arrangement, in the order of the places. Two characters on one cap are joined
/// in one word.
struct Letters
{
    const char* id;
    const char* name;
    std::u16string_view digits; ///< From the key below Esc on.
    std::u16string_view upper;
    std::u16string_view home;
    std::u16string_view lower;
    std::u16string_view code43; ///< Above Enter (ANSI), left of it (ISO).
    std::u16string_view iso;    ///< Right of the left Shift.
};

constexpr std::array Arrangements{
    Letters{"qwerty", QT_TRANSLATE_NOOP("KeyboardLayouts", "QWERTY, US"),
            u"` 1 2 3 4 5 6 7 8 9 0 - =", u"Q W E R T Y U I O P [ ]", u"A S D F G H J K L ; '",
            u"Z X C V B N M , . /", u"\\", u"<"},
    Letters{"qwerty-uk", QT_TRANSLATE_NOOP("KeyboardLayouts", "QWERTY, UK"),
            u"` 1 2 3 4 5 6 7 8 9 0 - =", u"Q W E R T Y U I O P [ ]", u"A S D F G H J K L ; '",
            u"Z X C V B N M , . /", u"#", u"\\"},
    Letters{"qwertz", QT_TRANSLATE_NOOP("KeyboardLayouts", "QWERTZ, German"),
            u"^ 1 2 3 4 5 6 7 8 9 0 ß ´", u"Q W E R T Z U I O P Ü +", u"A S D F G H J K L Ö Ä",
            u"Y X C V B N M , . -", u"#", u"<"},
    Letters{"azerty", QT_TRANSLATE_NOOP("KeyboardLayouts", "AZERTY, French"),
            u"² &1 é2 \"3 '4 (5 -6 è7 _8 ç9 à0 )° =+", u"A Z E R T Y U I O P ^ $",
            u"Q S D F G H J K L M ù", u"W X C V B N , ; : !", u"*", u"<"},
    Letters{"dvorak", QT_TRANSLATE_NOOP("KeyboardLayouts", "Dvorak"), u"` 1 2 3 4 5 6 7 8 9 0 [ ]",
            u"' , . P Y F G C R L / =", u"A O E U I D H T N S -", u"; Q J K X B M W V Z", u"\\",
            u"<"},
    Letters{"colemak", QT_TRANSLATE_NOOP("KeyboardLayouts", "Colemak"),
            u"` 1 2 3 4 5 6 7 8 9 0 - =", u"Q W F P G J L U Y ; [ ]", u"A R S T D H N E I O '",
            u"Z X C V B K M , . /", u"\\", u"<"},
};

/// The values under which those places are stored, in the same order; a blank is not counted.
constexpr std::string_view DigitKeys = " 1234567890-=";
constexpr std::string_view UpperKeys = "QWERTYUIOP[]";
constexpr std::string_view HomeKeys = "ASDFGHJKL;'";
constexpr std::string_view LowerKeys = "ZXCVBNM,./";
constexpr std::string_view Code43Key = "\\";
constexpr std::string_view IsoKey = " ";

/// A key whose legend is the same in all arrangements.
struct FixedKey
{
    int key;
    const char* legend;
    const char* shortLegend; ///< Null where `legend` is short.
    double x;
    double y;
    double width = 1;
    double height = 1;
};

constexpr auto Uncounted = static_cast<int>(Qt::Key_unknown);

constexpr std::array MainBlock{
    FixedKey{Qt::Key_Escape, QT_TRANSLATE_NOOP("KeyboardLayouts", "Esc"), nullptr, 0, 0},
    FixedKey{Qt::Key_Backspace, QT_TRANSLATE_NOOP("KeyboardLayouts", "Backspace"),
             QT_TRANSLATE_NOOP("KeyboardLayouts", "Back"), 13, DigitRow, 2},
    FixedKey{Qt::Key_Tab, QT_TRANSLATE_NOOP("KeyboardLayouts", "Tab"), nullptr, 0, UpperRow, 1.5},
    FixedKey{Qt::Key_CapsLock, QT_TRANSLATE_NOOP("KeyboardLayouts", "Caps Lock"),
             QT_TRANSLATE_NOOP("KeyboardLayouts", "Caps"), 0, HomeRow, 1.75},
    FixedKey{Qt::Key_Shift, QT_TRANSLATE_NOOP("KeyboardLayouts", "Shift"), nullptr, 12.25, LowerRow,
             2.75},
    FixedKey{Qt::Key_Control, QT_TRANSLATE_NOOP("KeyboardLayouts", "Ctrl"), nullptr, 0, SpaceRow,
             1.25},
    FixedKey{Uncounted, QT_TRANSLATE_NOOP("KeyboardLayouts", "Meta"), nullptr, 1.25, SpaceRow,
             1.25},
    FixedKey{Qt::Key_Alt, QT_TRANSLATE_NOOP("KeyboardLayouts", "Alt"), nullptr, 2.5, SpaceRow,
             1.25},
    FixedKey{Qt::Key_Space, QT_TRANSLATE_NOOP("KeyboardLayouts", "Space"), nullptr, 3.75, SpaceRow,
             6.25},
    FixedKey{0x01001256, QT_TRANSLATE_NOOP("KeyboardLayouts", "Alt"), nullptr, 10, SpaceRow, 1.25},
    FixedKey{Uncounted, QT_TRANSLATE_NOOP("KeyboardLayouts", "Meta"), nullptr, 11.25, SpaceRow,
             1.25},
    FixedKey{Uncounted, QT_TRANSLATE_NOOP("KeyboardLayouts", "Menu"), nullptr, 12.5, SpaceRow,
             1.25},
    FixedKey{Qt::Key_Control, QT_TRANSLATE_NOOP("KeyboardLayouts", "Ctrl"), nullptr, 13.75,
             SpaceRow, 1.25},
};

constexpr std::array NavigationBlock{
    FixedKey{Uncounted, QT_TRANSLATE_NOOP("KeyboardLayouts", "Print"),
             QT_TRANSLATE_NOOP("KeyboardLayouts", "Prt"), Navigation, 0},
    FixedKey{Qt::Key_ScrollLock, QT_TRANSLATE_NOOP("KeyboardLayouts", "Scroll"),
             QT_TRANSLATE_NOOP("KeyboardLayouts", "Scr"), Navigation + 1, 0},
    FixedKey{Qt::Key_Pause, QT_TRANSLATE_NOOP("KeyboardLayouts", "Pause"),
             QT_TRANSLATE_NOOP("KeyboardLayouts", "Brk"), Navigation + 2, 0},
    FixedKey{Qt::Key_Insert, QT_TRANSLATE_NOOP("KeyboardLayouts", "Ins"), nullptr, Navigation,
             DigitRow},
    FixedKey{Qt::Key_Home, QT_TRANSLATE_NOOP("KeyboardLayouts", "Home"), nullptr, Navigation + 1,
             DigitRow},
    FixedKey{Qt::Key_PageUp, QT_TRANSLATE_NOOP("KeyboardLayouts", "PgUp"), nullptr, Navigation + 2,
             DigitRow},
    FixedKey{Qt::Key_Delete, QT_TRANSLATE_NOOP("KeyboardLayouts", "Del"), nullptr, Navigation,
             UpperRow},
    FixedKey{Qt::Key_End, QT_TRANSLATE_NOOP("KeyboardLayouts", "End"), nullptr, Navigation + 1,
             UpperRow},
    FixedKey{Qt::Key_PageDown, QT_TRANSLATE_NOOP("KeyboardLayouts", "PgDn"), nullptr,
             Navigation + 2, UpperRow},
    FixedKey{Qt::Key_Up, "↑", nullptr, Navigation + 1, LowerRow},
    FixedKey{Qt::Key_Left, "←", nullptr, Navigation, SpaceRow},
    FixedKey{Qt::Key_Down, "↓", nullptr, Navigation + 1, SpaceRow},
    FixedKey{Qt::Key_Right, "→", nullptr, Navigation + 2, SpaceRow},
};

constexpr std::array KeypadBlock{
    FixedKey{0x01000104, QT_TRANSLATE_NOOP("KeyboardLayouts", "Num"), nullptr, Keypad, DigitRow},
    FixedKey{0x01000102, "/", nullptr, Keypad + 1, DigitRow},
    FixedKey{0x010000d5, "*", nullptr, Keypad + 2, DigitRow},
    FixedKey{0xca, "-", nullptr, Keypad + 3, DigitRow},
    FixedKey{0x0100125e, "7", nullptr, Keypad, UpperRow},
    FixedKey{0x01001259, "8", nullptr, Keypad + 1, UpperRow},
    FixedKey{0xa8, "9", nullptr, Keypad + 2, UpperRow},
    FixedKey{0x010000d4, "+", nullptr, Keypad + 3, UpperRow, 1, 2},
    FixedKey{0x01001257, "4", nullptr, Keypad, HomeRow},
    FixedKey{0x01001254, "5", nullptr, Keypad + 1, HomeRow},
    FixedKey{0x0100125f, "6", nullptr, Keypad + 2, HomeRow},
    FixedKey{0x01001260, "1", nullptr, Keypad, LowerRow},
    FixedKey{0x01001255, "2", nullptr, Keypad + 1, LowerRow},
    FixedKey{0x01001252, "3", nullptr, Keypad + 2, LowerRow},
    FixedKey{Uncounted, QT_TRANSLATE_NOOP("KeyboardLayouts", "Enter"),
             QT_TRANSLATE_NOOP("KeyboardLayouts", "Ent"), Keypad + 3, LowerRow, 1, 2},
    FixedKey{0x01001258, "0", nullptr, Keypad, SpaceRow, 2},
    FixedKey{0x010000ff, ".", nullptr, Keypad + 2, SpaceRow},
};

constexpr FixedKey AnsiEnter{
    Qt::Key_Enter, QT_TRANSLATE_NOOP("KeyboardLayouts", "Enter"), nullptr, 12.75, HomeRow, 2.25};
constexpr FixedKey AnsiShift{
    Qt::Key_Shift, QT_TRANSLATE_NOOP("KeyboardLayouts", "Shift"), nullptr, 0, LowerRow, 2.25};
constexpr FixedKey IsoEnter{
    Qt::Key_Enter, QT_TRANSLATE_NOOP("KeyboardLayouts", "Enter"), nullptr, 13.5, UpperRow, 1.5};
constexpr FixedKey IsoShift{
    Qt::Key_Shift, QT_TRANSLATE_NOOP("KeyboardLayouts", "Shift"), nullptr, 0, LowerRow, 1.25};
constexpr double IsoEnterStem = 13.75;

struct Region
{
    QLocale::Territory territory;
    const char* id;
};

/// Where a board other than ANSI with US letters is usual.
constexpr std::array Regions{
    Region{QLocale::UnitedKingdom, "iso-qwerty-uk"},
    Region{QLocale::Ireland, "iso-qwerty-uk"},
    Region{QLocale::Germany, "iso-qwertz"},
    Region{QLocale::Austria, "iso-qwertz"},
    Region{QLocale::Switzerland, "iso-qwertz"},
    Region{QLocale::Liechtenstein, "iso-qwertz"},
    Region{QLocale::Luxembourg, "iso-qwertz"},
    Region{QLocale::Czechia, "iso-qwertz"},
    Region{QLocale::Slovakia, "iso-qwertz"},
    Region{QLocale::Hungary, "iso-qwertz"},
    Region{QLocale::Slovenia, "iso-qwertz"},
    Region{QLocale::Croatia, "iso-qwertz"},
    Region{QLocale::BosniaAndHerzegovina, "iso-qwertz"},
    Region{QLocale::France, "iso-azerty"},
    Region{QLocale::Belgium, "iso-azerty"},
    Region{QLocale::Monaco, "iso-azerty"},
    Region{QLocale::Algeria, "iso-azerty"},
    Region{QLocale::Morocco, "iso-azerty"},
    Region{QLocale::Tunisia, "iso-azerty"},
    Region{QLocale::Senegal, "iso-azerty"},
    Region{QLocale::IvoryCoast, "iso-azerty"},
    Region{QLocale::Spain, "iso-qwerty"},
    Region{QLocale::Portugal, "iso-qwerty"},
    Region{QLocale::Italy, "iso-qwerty"},
    Region{QLocale::Denmark, "iso-qwerty"},
    Region{QLocale::Norway, "iso-qwerty"},
    Region{QLocale::Sweden, "iso-qwerty"},
    Region{QLocale::Finland, "iso-qwerty"},
    Region{QLocale::Iceland, "iso-qwerty"},
    Region{QLocale::Estonia, "iso-qwerty"},
    Region{QLocale::Turkey, "iso-qwerty"},
    Region{QLocale::Brazil, "iso-qwerty"},
    Region{QLocale::Mexico, "iso-qwerty"},
    Region{QLocale::Argentina, "iso-qwerty"},
};

QString translated(const char* text)
{
    return QCoreApplication::translate("KeyboardLayouts", text);
}

QString idOf(Form form, const Letters& letters)
{
    return (form == Form::Ansi ? QStringLiteral("ansi-") : QStringLiteral("iso-")) +
           QLatin1String(letters.id);
}

/// Puts the keys of one kind after another on a board.
class Builder
{
public:
    void addFixed(const FixedKey& fixed)
    {
        const QString legend = translated(fixed.legend);
        const bool isCounted = fixed.key != Uncounted;
        m_keys.append({.key = fixed.key,
                       .legend = legend,
                       .shortLegend = fixed.shortLegend ? translated(fixed.shortLegend) : QString(),
                       .name = isCounted ? KeyNames::text(fixed.key) : legend,
                       .area = {fixed.x, fixed.y, fixed.width, fixed.height},
                       .lower = {}});
    }

    template <typename Block>
    void addBlock(const Block& block)
    {
        for (const FixedKey& fixed : block) {
            addFixed(fixed);
        }
    }

    void addFunctionKeys(int first, int count, double x)
    {
        for (int key = first; key < first + count; ++key, ++x) {
            const QString name = KeyNames::text(key);
            m_keys.append({key, name, {}, name, {x, 0, 1, 1}, {}});
        }
    }

    /// Keys side by side from `x`; the last is as wide as `lastWidth`.
    void addRow(std::string_view keys, std::u16string_view legends, double x, double y,
                double lastWidth = 1)
    {
        const QStringList words =
            QString::fromUtf16(legends.data(), static_cast<qsizetype>(legends.size()))
                .split(QLatin1Char(' '));
        Q_ASSERT(static_cast<size_t>(words.size()) == keys.size());
        for (size_t i = 0; i < keys.size(); ++i, ++x) {
            const QString& word = words.at(static_cast<qsizetype>(i));
            const QString legend =
                word.size() == 2 ? word.first(1) + QLatin1Char(' ') + word.last(1) : word;
            const double width = i + 1 == keys.size() ? lastWidth : 1;
            const int key = keys.at(i) == ' ' ? Uncounted : keys.at(i);
            m_keys.append({key, legend, {}, legend, {x, y, width, 1}, {}});
        }
    }

    void setLower(const QRectF& lower) { m_keys.last().lower = lower; }

    KeyboardLayout layout() { return KeyboardLayout(std::move(m_keys)); }

private:
    QList<KeyboardKey> m_keys;
};

void addFormKeys(Builder& builder, Form form, const Letters& letters)
{
    constexpr double code43Ansi = 13.5;
    constexpr double code43Iso = 12.75;
    if (form == Form::Ansi) {
        builder.addRow(Code43Key, letters.code43, code43Ansi, UpperRow, LettersEnd - code43Ansi);
        builder.addFixed(AnsiEnter);
        builder.addFixed(AnsiShift);
        return;
    }
    builder.addRow(Code43Key, letters.code43, code43Iso, HomeRow);
    builder.addFixed(IsoEnter);
    builder.setLower({IsoEnterStem, UpperRow, LettersEnd - IsoEnterStem, 2});
    builder.addFixed(IsoShift);
    builder.addRow(IsoKey, letters.iso, IsoShift.width, LowerRow);
}

KeyboardLayout build(Form form, const Letters& letters)
{
    Builder builder;
    builder.addBlock(MainBlock);
    builder.addFunctionKeys(Qt::Key_F1, 4, 2);
    builder.addFunctionKeys(Qt::Key_F5, 4, 6.5);
    builder.addFunctionKeys(Qt::Key_F9, 4, 11);
    builder.addRow(DigitKeys, letters.digits, 0, DigitRow);
    builder.addRow(UpperKeys, letters.upper, 1.5, UpperRow);
    builder.addRow(HomeKeys, letters.home, 1.75, HomeRow);
    builder.addRow(LowerKeys, letters.lower, 2.25, LowerRow);
    addFormKeys(builder, form, letters);
    builder.addBlock(NavigationBlock);
    builder.addBlock(KeypadBlock);
    return builder.layout();
}

} // namespace

QList<KeyboardLayouts::Choice> KeyboardLayouts::choices()
{
    QList<Choice> all;
    for (const Form form : {Form::Ansi, Form::Iso}) {
        const QString formName =
            form == Form::Ansi ? QStringLiteral("ANSI") : QStringLiteral("ISO");
        for (const Letters& letters : Arrangements) {
            all.append({idOf(form, letters),
                        QStringLiteral("%1 (%2)").arg(translated(letters.name), formName)});
        }
    }
    return all;
}

QString KeyboardLayouts::forLocale(const QLocale& locale)
{
    const auto* region =
        std::find_if(Regions.begin(), Regions.end(), [&locale](const Region& candidate) {
            return candidate.territory == locale.territory();
        });
    return QLatin1String(region == Regions.end() ? "ansi-qwerty" : region->id);
}

QString KeyboardLayouts::selected()
{
    const QString stored = Settings::instance().value(SettingsKeys::KeyboardLayout);
    const QList<Choice> all = choices();
    const bool isKnown = std::any_of(
        all.begin(), all.end(), [&stored](const Choice& choice) { return choice.id == stored; });
    if (isKnown) {
        return stored;
    }
    const QLocale ofInput = QGuiApplication::inputMethod()->locale();
    return forLocale(ofInput.language() == QLocale::C ? QLocale::system() : ofInput);
}

KeyboardLayout KeyboardLayouts::make(const QString& id)
{
    for (const Form form : {Form::Ansi, Form::Iso}) {
        for (const Letters& letters : Arrangements) {
            if (idOf(form, letters) == id) {
                return build(form, letters);
            }
        }
    }
    return build(Form::Ansi, Arrangements.front());
}

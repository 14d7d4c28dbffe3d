#pragma once

#include <QColor>
#include <QObject>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>
#include <array>

// The one palette every screen draws with, the type scale and the spacings and corner radii of
// the layout, the colour rules derived from the palette, and the few texts and shares the shared
// components show of the numbers they are given.
class Theme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(QColor win READ win CONSTANT)
    Q_PROPERTY(QColor loss READ loss CONSTANT)
    Q_PROPERTY(QColor winSoft READ winSoft CONSTANT)
    Q_PROPERTY(QColor lossSoft READ lossSoft CONSTANT)
    Q_PROPERTY(QColor gold READ gold CONSTANT)
    Q_PROPERTY(QColor goldBright READ goldBright CONSTANT)
    Q_PROPERTY(QColor teal READ teal CONSTANT)
    Q_PROPERTY(QColor orange READ orange CONSTANT)
    Q_PROPERTY(QColor purple READ purple CONSTANT)
    Q_PROPERTY(QColor wallTop READ wallTop CONSTANT)
    Q_PROPERTY(QColor wallBottom READ wallBottom CONSTANT)
    Q_PROPERTY(QColor glassDark READ glassDark CONSTANT)
    Q_PROPERTY(QColor text READ text CONSTANT)
    Q_PROPERTY(QColor textSecondary READ textSecondary CONSTANT)
    Q_PROPERTY(QColor textDim READ textDim CONSTANT)
    Q_PROPERTY(QColor textFaint READ textFaint CONSTANT)
    Q_PROPERTY(QColor textOnGold READ textOnGold CONSTANT)
    Q_PROPERTY(QString fontFamily READ fontFamily CONSTANT)

    Q_PROPERTY(int lineSpacing READ lineSpacing CONSTANT)
    Q_PROPERTY(int smallSpacing READ smallSpacing CONSTANT)
    Q_PROPERTY(int inlineSpacing READ inlineSpacing CONSTANT)
    Q_PROPERTY(int itemSpacing READ itemSpacing CONSTANT)
    Q_PROPERTY(int controlSpacing READ controlSpacing CONSTANT)
    Q_PROPERTY(int cardSpacing READ cardSpacing CONSTANT)
    Q_PROPERTY(int blockSpacing READ blockSpacing CONSTANT)
    Q_PROPERTY(int sectionSpacing READ sectionSpacing CONSTANT)
    Q_PROPERTY(int pageMargin READ pageMargin CONSTANT)

    Q_PROPERTY(int itemRadius READ itemRadius CONSTANT)
    Q_PROPERTY(int controlRadius READ controlRadius CONSTANT)
    Q_PROPERTY(int buttonRadius READ buttonRadius CONSTANT)
    Q_PROPERTY(int rowRadius READ rowRadius CONSTANT)
    Q_PROPERTY(int cardRadius READ cardRadius CONSTANT)
    Q_PROPERTY(int panelRadius READ panelRadius CONSTANT)
    Q_PROPERTY(int heroRadius READ heroRadius CONSTANT)

public:
    using Pair = std::array<QColor, 2>; // light, dark

    // The type scale: what each kind of text is, smallest first. ThemeText draws with it.
    enum TextRole {
        Micro,        // 9: category badges, captions under small figures
        Small,        // 10: chart marks, friend tags, captions of card figures
        Caption,      // 11: secondary lines, section labels
        Footnote,     // 12: subtitles, chips, the toolbar's fields
        Body,         // 13: running text, names in lists
        Callout,      // 14: primary lines of rows and cards, typed text
        Emphasis,     // 15: the main button's label, a match row's K/D/A
        Headline,     // 16: rank and tag lines beside a title
        Subtitle,     // 17: the title of an empty screen
        Figure,       // 18: the figures of a card's foot
        Title,        // 20: the title of a sheet
        Display,      // 24: a card's main figure, a rank's name
        DisplayLarge, // 26: the section title, the player's name
        Brand,        // 28: the name of the app on the sign-in card
    };
    Q_ENUM(TextRole)

    explicit Theme(QObject* parent = nullptr) : QObject(parent) {}

    static QColor win() { return QColor(83, 131, 232); }
    static QColor loss() { return QColor(232, 64, 87); }
    static QColor winSoft() { return QColor::fromRgbF(83 / 255.f, 131 / 255.f, 232 / 255.f, 0.16f); }
    static QColor lossSoft() { return QColor::fromRgbF(232 / 255.f, 64 / 255.f, 87 / 255.f, 0.16f); }
    static QColor gold() { return QColor(200, 170, 110); }
    static QColor goldBright() { return QColor(228, 204, 146); }
    static QColor teal() { return QColor(10, 200, 185); }
    static QColor orange() { return QColor(255, 159, 10); }
    static QColor purple() { return QColor(168, 85, 247); }
    static QColor wallTop() { return QColor(26, 21, 48); }
    static QColor wallBottom() { return QColor(12, 10, 24); }
    static QColor glassDark() { return QColor(14, 20, 34); }
    static QColor text() { return white(0.96); }
    static QColor textSecondary() { return white(0.62); }
    static QColor textDim() { return white(0.42); }
    static QColor textFaint() { return white(0.30); }
    // Labels on a gold button: the wallpaper's own dusk.
    static QColor textOnGold() { return wallTop(); }
    static QColor white(double opacity) { return QColor::fromRgbF(1, 1, 1, static_cast<float>(opacity)); }
    static QString fontFamily() { return QStringLiteral("Inter"); }
    [[nodiscard]] static int pixelSize(TextRole role);
    Q_INVOKABLE int fontSize(int role) const { return pixelSize(static_cast<TextRole>(role)); }

    // Gaps, smallest first: between lines of a text block, an icon and its label, items of a row
    // or column, controls, cards, blocks of a card, the sections of a screen; a page's margin.
    static int lineSpacing() { return 2; }
    static int smallSpacing() { return 4; }
    static int inlineSpacing() { return 6; }
    static int itemSpacing() { return 8; }
    static int controlSpacing() { return 10; }
    static int cardSpacing() { return 12; }
    static int blockSpacing() { return 14; }
    static int sectionSpacing() { return 16; }
    static int pageMargin() { return 28; }

    // Corner radii, by what is rounded: list items and pickers, controls, buttons and fields,
    // match rows, cards, panels and sheets, the hero card.
    static int itemRadius() { return 9; }
    static int controlRadius() { return 10; }
    static int buttonRadius() { return 12; }
    static int rowRadius() { return 14; }
    static int cardRadius() { return 16; }
    static int panelRadius() { return 18; }
    static int heroRadius() { return 20; }

    // Light and dark colour of a tier, matched on the upper-cased tier; grey for anything else.
    [[nodiscard]] static Pair tierPair(const QString& tier);
    // One of six light/dark pairs, picked by |seed| mod 6.
    [[nodiscard]] static Pair champPair(qint64 seed);
    [[nodiscard]] static QColor kda(double kda);
    // A hash of a text that is the same on every run, for picking fallback colours.
    [[nodiscard]] static qint64 stableHash(const QString& text);

    Q_INVOKABLE QVariantList tierGradient(const QString& tier) const;
    Q_INVOKABLE QVariantList champGradient(qint64 seed) const;
    Q_INVOKABLE QVariantList nameGradient(const QString& name) const;
    Q_INVOKABLE QColor kdaColor(double kda) const { return Theme::kda(kda); }

    // A win ring's centre: the percentage rounded half away from zero, then "%".
    [[nodiscard]] static QString percentText(double pct);
    // A win ring without a colour of its own: blue from 50 up, red below.
    [[nodiscard]] static QColor ringColorFor(double pct) { return pct >= 50 ? win() : loss(); }
    // Kills / deaths / assists as styled text: faint slashes, deaths in red.
    [[nodiscard]] static QString kdaLine(qint64 kills, qint64 deaths, qint64 assists);
    // The share of a win/loss bar that is blue; 0 without games.
    [[nodiscard]] static double winShare(qint64 wins, qint64 losses);
    // The first two characters of a name in upper case, for a portrait that has not loaded.
    [[nodiscard]] static QString initials(const QString& name);

    Q_INVOKABLE QString ringText(double pct) const { return percentText(pct); }
    Q_INVOKABLE QColor ringColor(double pct) const { return ringColorFor(pct); }
    Q_INVOKABLE QString kdaLineText(qint64 kills, qint64 deaths, qint64 assists) const {
        return kdaLine(kills, deaths, assists);
    }
    Q_INVOKABLE double winShareOf(qint64 wins, qint64 losses) const { return winShare(wins, losses); }
    Q_INVOKABLE QString initialsOf(const QString& name) const { return initials(name); }
};

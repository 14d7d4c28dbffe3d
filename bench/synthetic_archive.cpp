#include "bench/synthetic_archive.h"

#include "archive/archive_store.h"

#include <QDateTime>
#include <QLocale>
#include <QTimeZone>
#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numbers>
#include <optional>
#include <random>

namespace {

// ---------------------------------------------------------------------------------------------
// Randomness. The distributions are written out here rather than taken from <random>, whose
// distributions may differ between standard libraries: the same seed must give the same archive
// everywhere.

class Random {
public:
    explicit Random(quint64 seed) : m_engine(seed) {}

    double uniform() { return static_cast<double>(m_engine() >> 11) * 0x1.0p-53; }
    int below(int n) { return std::min(n - 1, static_cast<int>(uniform() * n)); }
    int between(int low, int high) { return low + below(high - low + 1); }
    bool chance(double p) { return uniform() < p; }

    double normal(double mean, double deviation) {
        // Box-Muller; one of the pair is enough here.
        const double u1 = std::max(uniform(), 1e-12);
        const double u2 = uniform();
        return mean + deviation * std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * std::numbers::pi * u2);
    }

    int poisson(double mean) {
        if (mean <= 0)
            return 0;
        if (mean > 40)
            return std::max(0, static_cast<int>(std::lround(normal(mean, std::sqrt(mean)))));
        const double limit = std::exp(-mean);
        int count = 0;
        for (double product = uniform(); product > limit; product *= uniform())
            ++count;
        return count;
    }

    template <class Weights> int weighted(const Weights& weights) {
        double total = 0;
        for (double w : weights)
            total += w;
        double roll = uniform() * total;
        int index = 0;
        for (double w : weights) {
            if (roll < w && w > 0)
                return index;
            roll -= w;
            ++index;
        }
        // Rounding left the roll past the end: the last possible choice.
        for (int i = index - 1; i >= 0; --i)
            if (weights[i] > 0)
                return i;
        return 0;
    }

    QString token(int length) {
        static constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
        QString text(length, Qt::Uninitialized);
        for (int i = 0; i < length; ++i)
            text[i] = QLatin1Char(alphabet[below(64)]);
        return text;
    }

private:
    std::mt19937_64 m_engine;
};

// ---------------------------------------------------------------------------------------------
// Game data: real champion and item numbers with their Data Dragon keys.

enum Role { Top, Jungle, Middle, Bottom, Utility, RoleCount };
constexpr const char* positionNames[RoleCount] = {"TOP", "JUNGLE", "MIDDLE", "BOTTOM", "UTILITY"};

enum class Build { Physical, Magic, Tank, Enchanter };

struct Champion {
    int id;
    const char* name;
    Role role;
    Build build;
};

using B = Build;
// clang-format off
constexpr Champion champions[] = {
    // Top
    {266, "Aatrox", Top, B::Physical}, {86, "Garen", Top, B::Physical}, {122, "Darius", Top, B::Physical},
    {24, "Jax", Top, B::Physical}, {92, "Riven", Top, B::Physical}, {114, "Fiora", Top, B::Physical},
    {58, "Renekton", Top, B::Physical}, {54, "Malphite", Top, B::Tank}, {516, "Ornn", Top, B::Tank},
    {14, "Sion", Top, B::Tank}, {98, "Shen", Top, B::Tank}, {875, "Sett", Top, B::Physical},
    {887, "Gwen", Top, B::Magic}, {240, "Kled", Top, B::Physical}, {420, "Illaoi", Top, B::Physical},
    {164, "Camille", Top, B::Physical}, {150, "Gnar", Top, B::Physical}, {17, "Teemo", Top, B::Magic},
    {36, "DrMundo", Top, B::Tank}, {897, "KSante", Top, B::Tank}, {23, "Tryndamere", Top, B::Physical},
    {39, "Irelia", Top, B::Physical}, {126, "Jayce", Top, B::Physical}, {68, "Rumble", Top, B::Magic},
    {83, "Yorick", Top, B::Physical}, {75, "Nasus", Top, B::Physical}, {82, "Mordekaiser", Top, B::Magic},
    {6, "Urgot", Top, B::Physical}, {27, "Singed", Top, B::Tank}, {31, "Chogath", Top, B::Tank},
    {78, "Poppy", Top, B::Tank}, {85, "Kennen", Top, B::Magic}, {10, "Kayle", Top, B::Magic},
    // Jungle
    {64, "LeeSin", Jungle, B::Physical}, {234, "Viego", Jungle, B::Physical}, {121, "Khazix", Jungle, B::Physical},
    {107, "Rengar", Jungle, B::Physical}, {11, "MasterYi", Jungle, B::Physical}, {5, "XinZhao", Jungle, B::Physical},
    {59, "JarvanIV", Jungle, B::Physical}, {120, "Hecarim", Jungle, B::Physical}, {113, "Sejuani", Jungle, B::Tank},
    {32, "Amumu", Jungle, B::Tank}, {154, "Zac", Jungle, B::Tank}, {20, "Nunu", Jungle, B::Tank},
    {33, "Rammus", Jungle, B::Tank}, {9, "Fiddlesticks", Jungle, B::Magic}, {28, "Evelynn", Jungle, B::Magic},
    {60, "Elise", Jungle, B::Magic}, {76, "Nidalee", Jungle, B::Magic}, {141, "Kayn", Jungle, B::Physical},
    {203, "Kindred", Jungle, B::Physical}, {200, "Belveth", Jungle, B::Physical}, {421, "RekSai", Jungle, B::Physical},
    {104, "Graves", Jungle, B::Physical}, {56, "Nocturne", Jungle, B::Physical}, {19, "Warwick", Jungle, B::Physical},
    {254, "Vi", Jungle, B::Physical}, {876, "Lillia", Jungle, B::Magic}, {79, "Gragas", Jungle, B::Magic},
    {35, "Shaco", Jungle, B::Physical}, {427, "Ivern", Jungle, B::Enchanter}, {72, "Skarner", Jungle, B::Tank},
    {233, "Briar", Jungle, B::Physical}, {77, "Udyr", Jungle, B::Physical}, {102, "Shyvana", Jungle, B::Physical},
    {131, "Diana", Jungle, B::Magic}, {106, "Volibear", Jungle, B::Tank}, {48, "Trundle", Jungle, B::Physical},
    {62, "MonkeyKing", Jungle, B::Physical},
    // Middle
    {103, "Ahri", Middle, B::Magic}, {134, "Syndra", Middle, B::Magic}, {61, "Orianna", Middle, B::Magic},
    {112, "Viktor", Middle, B::Magic}, {517, "Sylas", Middle, B::Magic}, {7, "Leblanc", Middle, B::Magic},
    {238, "Zed", Middle, B::Physical}, {157, "Yasuo", Middle, B::Physical}, {777, "Yone", Middle, B::Physical},
    {91, "Talon", Middle, B::Physical}, {105, "Fizz", Middle, B::Magic}, {245, "Ekko", Middle, B::Magic},
    {4, "TwistedFate", Middle, B::Magic}, {13, "Ryze", Middle, B::Magic}, {69, "Cassiopeia", Middle, B::Magic},
    {8, "Vladimir", Middle, B::Magic}, {90, "Malzahar", Middle, B::Magic}, {127, "Lissandra", Middle, B::Magic},
    {99, "Lux", Middle, B::Magic}, {142, "Zoe", Middle, B::Magic}, {268, "Azir", Middle, B::Magic},
    {163, "Taliyah", Middle, B::Magic}, {136, "AurelionSol", Middle, B::Magic}, {1, "Annie", Middle, B::Magic},
    {34, "Anivia", Middle, B::Magic}, {3, "Galio", Middle, B::Magic}, {55, "Katarina", Middle, B::Magic},
    {84, "Akali", Middle, B::Magic}, {38, "Kassadin", Middle, B::Magic}, {45, "Veigar", Middle, B::Magic},
    {101, "Xerath", Middle, B::Magic}, {115, "Ziggs", Middle, B::Magic}, {711, "Vex", Middle, B::Magic},
    {246, "Qiyana", Middle, B::Physical}, {910, "Hwei", Middle, B::Magic}, {950, "Naafiri", Middle, B::Physical},
    {166, "Akshan", Middle, B::Physical}, {518, "Neeko", Middle, B::Magic}, {74, "Heimerdinger", Middle, B::Magic},
    // Bottom
    {222, "Jinx", Bottom, B::Physical}, {51, "Caitlyn", Bottom, B::Physical}, {81, "Ezreal", Bottom, B::Physical},
    {236, "Lucian", Bottom, B::Physical}, {21, "MissFortune", Bottom, B::Physical}, {67, "Vayne", Bottom, B::Physical},
    {145, "Kaisa", Bottom, B::Physical}, {202, "Jhin", Bottom, B::Physical}, {119, "Draven", Bottom, B::Physical},
    {498, "Xayah", Bottom, B::Physical}, {523, "Aphelios", Bottom, B::Physical}, {360, "Samira", Bottom, B::Physical},
    {22, "Ashe", Bottom, B::Physical}, {110, "Varus", Bottom, B::Physical}, {15, "Sivir", Bottom, B::Physical},
    {18, "Tristana", Bottom, B::Physical}, {96, "KogMaw", Bottom, B::Physical}, {29, "Twitch", Bottom, B::Physical},
    {429, "Kalista", Bottom, B::Physical}, {221, "Zeri", Bottom, B::Physical}, {895, "Nilah", Bottom, B::Physical},
    {901, "Smolder", Bottom, B::Physical}, {42, "Corki", Bottom, B::Physical},
    // Support
    {412, "Thresh", Utility, B::Tank}, {89, "Leona", Utility, B::Tank}, {111, "Nautilus", Utility, B::Tank},
    {53, "Blitzcrank", Utility, B::Tank}, {555, "Pyke", Utility, B::Physical}, {117, "Lulu", Utility, B::Enchanter},
    {40, "Janna", Utility, B::Enchanter}, {267, "Nami", Utility, B::Enchanter}, {16, "Soraka", Utility, B::Enchanter},
    {37, "Sona", Utility, B::Enchanter}, {350, "Yuumi", Utility, B::Enchanter}, {43, "Karma", Utility, B::Enchanter},
    {25, "Morgana", Utility, B::Magic}, {63, "Brand", Utility, B::Magic}, {143, "Zyra", Utility, B::Magic},
    {235, "Senna", Utility, B::Physical}, {201, "Braum", Utility, B::Tank}, {497, "Rakan", Utility, B::Enchanter},
    {526, "Rell", Utility, B::Tank}, {902, "Milio", Utility, B::Enchanter}, {888, "Renata", Utility, B::Enchanter},
    {12, "Alistar", Utility, B::Tank}, {44, "Taric", Utility, B::Enchanter}, {432, "Bard", Utility, B::Enchanter},
    {223, "TahmKench", Utility, B::Tank}, {147, "Seraphine", Utility, B::Magic}, {50, "Swain", Utility, B::Magic},
    {161, "Velkoz", Utility, B::Magic}, {26, "Zilean", Utility, B::Enchanter},
};
// clang-format on
constexpr int championCount = static_cast<int>(std::size(champions));

int championIndex(int id) {
    for (int i = 0; i < championCount; ++i)
        if (champions[i].id == id)
            return i;
    return 0;
}

constexpr int boots[] = {3006, 3020, 3047, 3111, 3158, 3009};
constexpr int physicalItems[] = {3031, 3072, 3036, 3033, 3094, 3087, 3142, 3814, 6672, 6673, 6675, 6676, 3071, 3053,
                                 3074, 3078, 3153, 6333, 6692, 6694, 3026, 3156, 3139, 3046, 3085, 3508, 6610, 3161};
constexpr int magicItems[] = {3089, 3135, 3157, 3165, 3116, 3100, 3102, 6653,
                              6655, 4645, 3003, 3115, 4628, 4629, 3137, 3118};
constexpr int tankItems[] = {3068, 3075, 3143, 3065, 3742, 3110, 3001, 2504, 3084, 6665, 3083, 3109, 3050};
constexpr int supportItems[] = {3190, 3107, 3222, 3504, 6617, 6620, 2065, 3011};
constexpr int supportQuest[] = {3869, 3870, 3871, 3876, 3877};
constexpr int junglePets[] = {1101, 1102, 1103};
constexpr int starters[] = {1055, 1056, 1054, 1082};
constexpr int controlWard = 2055;
constexpr int healthPotion = 2003;
constexpr int stealthWard = 3340;
constexpr int oracleLens = 3364;
constexpr int farsight = 3363;

// ---------------------------------------------------------------------------------------------
// Queues, their maps and when they were open.

enum class Map { Rift, Abyss, Arena, Blitz };

struct QueueInfo {
    int id;
    const char* mode; // nullptr: the backend has no mode for such games
    double weight;
    Map map;
    double killsPerMinute; // per team
    double meanDuration;
    double durationDeviation;
    // Rotating modes are only open in these windows (days since the archive starts; 0,0 = always).
    std::array<std::pair<int, int>, 2> open;
};

constexpr QueueInfo queues[] = {
    {420, "CLASSIC", 380, Map::Rift, 0.50, 1850, 330, {}},
    {440, "CLASSIC", 120, Map::Rift, 0.50, 1850, 330, {}},
    {400, "CLASSIC", 70, Map::Rift, 0.55, 1800, 330, {}},
    {430, "CLASSIC", 25, Map::Rift, 0.58, 1750, 330, {}},
    {490, "CLASSIC", 60, Map::Rift, 0.60, 1700, 320, {}},
    {700, "CLASSIC", 12, Map::Rift, 0.50, 1900, 330, {}},
    {830, "CLASSIC", 3, Map::Rift, 0.45, 1500, 250, {}},
    {0, "CLASSIC", 3, Map::Rift, 0.50, 1800, 400, {}},
    {0, nullptr, 1, Map::Rift, 0.50, 1600, 400, {}},
    {450, "ARAM", 150, Map::Abyss, 1.25, 1140, 210, {}},
    {720, "ARAM", 4, Map::Abyss, 1.25, 1140, 210, {{{130, 160}, {480, 510}}}},
    {900, "URF", 25, Map::Rift, 1.10, 1150, 220, {{{0, 28}, {450, 485}}}},
    {1900, "URF", 5, Map::Rift, 1.10, 1150, 220, {{{250, 270}, {0, 0}}}},
    {2400, "KIWI", 40, Map::Abyss, 1.50, 1020, 200, {{{650, 720}, {0, 0}}}},
    {1700, "CHERRY", 45, Map::Arena, 0.40, 1290, 180, {{{110, 260}, {0, 0}}}},
    {1710, "CHERRY", 45, Map::Arena, 0.40, 1290, 180, {{{520, 640}, {0, 0}}}},
    {1300, "NEXUSBLITZ", 8, Map::Blitz, 1.00, 900, 140, {{{190, 215}, {0, 0}}}},
    {1400, "ULTBOOK", 8, Map::Rift, 0.65, 1500, 300, {{{30, 60}, {0, 0}}}},
    {1020, "ONEFORALL", 6, Map::Rift, 0.70, 1500, 300, {{{300, 330}, {0, 0}}}},
    {2300, "BRAWL", 5, Map::Blitz, 1.10, 840, 120, {{{480, 560}, {0, 0}}}},
    {950, "DOOMBOTSTEEMO", 3, Map::Rift, 0.80, 1400, 250, {{{200, 215}, {0, 0}}}},
};
constexpr int queueCount = static_cast<int>(std::size(queues));

bool isOpen(const QueueInfo& queue, int day) {
    if (queue.open[0].second == 0)
        return true;
    for (const auto& [from, to] : queue.open)
        if (to > from && day >= from && day < to)
            return true;
    return false;
}

bool isRanked(int queueId) {
    return queueId == 420 || queueId == 440;
}

// ---------------------------------------------------------------------------------------------
// People.

struct Player {
    QString puuid;
    std::optional<QString> gameName;
    QString tagLine;
    Role role = Middle;
    std::vector<std::pair<int, double>> pool; // champion index and weight
    double lpOffset = 0;                      // how far from the owner's rank they play
};

struct FriendSeed {
    const char* name;
    const char* tag;
    Role role;
    std::array<int, 3> pool;
    double weight;
};

constexpr FriendSeed friendSeeds[] = {
    {"LunaMoth", "moth", Jungle, {876, 64, 121}, 30},     {"kettle drum", "EUW", Utility, {412, 111, 89}, 24},
    {"Brisk Otter", "2077", Bottom, {222, 145, 202}, 16}, {"Zélie", "EUW", Top, {516, 875, 14}, 10},
    {"NightjarEUW", "fern", Bottom, {51, 236, 110}, 8},   {"Pebble", "EUW", Utility, {117, 267, 350}, 6},
    {"Marrowind", "0001", Top, {122, 86, 24}, 4},         {"saltmarsh", "salt", Middle, {238, 157, 777}, 2},
};
constexpr int friendCount = static_cast<int>(std::size(friendSeeds));

struct OwnerPool {
    Role role;
    double weight;
    std::array<std::pair<int, double>, 9> champions;
};

constexpr OwnerPool ownerPools[] = {
    {Middle, 52, {{{103, 30}, {134, 18}, {61, 14}, {112, 10}, {517, 8}, {910, 6}, {7, 5}, {245, 5}, {99, 4}}}},
    {Jungle, 24, {{{234, 30}, {64, 25}, {203, 12}, {131, 10}, {876, 8}, {59, 6}}}},
    {Utility, 10, {{{412, 30}, {117, 25}, {111, 15}, {267, 10}}}},
    {Top, 8, {{{516, 30}, {266, 25}, {887, 15}}}},
    {Bottom, 6, {{{222, 30}, {145, 25}, {81, 20}}}},
};

constexpr const char* namePrefixes[] = {"Dark", "Silent", "Lord", "Mister", "Tiny", "Crimson", "Frost",
                                        "Void", "Lucky",  "Sir",  "Wild",   "Iron", "Azure",   "Solar",
                                        "Mad",  "Sleepy", "Pale", "Quiet",  "Old",  "Brave"};
constexpr const char* nameNouns[] = {"Wolf",  "Fox",    "Rider",   "Blade",  "Mage",  "Otter",  "Raven",
                                     "Panda", "Knight", "Tiger",   "Cat",    "Ghost", "Smurf",  "Noodle",
                                     "Moon",  "Heron",  "Lantern", "Badger", "Comet", "Thistle"};
constexpr const char* syllables[] = {"ka",   "ri",  "zo",  "mel", "van", "dor", "tis", "lu",  "ne",  "qua",
                                     "brin", "sha", "tor", "ael", "yu",  "mi",  "ro",  "gan", "vel", "is"};
constexpr const char* accented[] = {"Élan",  "Ørn",  "Łukasz", "Jürgen", "Ñandú",
                                    "Şafak", "Ægir", "Søren",  "Žofie",  "Amélie"};

QString strangerName(Random& random) {
    const int style = random.below(100);
    QString name;
    if (style < 35) {
        name = QLatin1String(namePrefixes[random.below(std::size(namePrefixes))]) +
               QLatin1String(nameNouns[random.below(std::size(nameNouns))]);
    } else if (style < 55) {
        name = QLatin1String(namePrefixes[random.below(std::size(namePrefixes))]) + QLatin1Char(' ') +
               QLatin1String(nameNouns[random.below(std::size(nameNouns))]);
    } else if (style < 85) {
        const int pieces = random.between(2, 3);
        for (int i = 0; i < pieces; ++i)
            name += QLatin1String(syllables[random.below(std::size(syllables))]);
        name[0] = name[0].toUpper();
    } else if (style < 95) {
        name = QString::fromLatin1(nameNouns[random.below(std::size(nameNouns))]).toLower() +
               QString::number(random.between(1, 9999));
    } else {
        name = QString::fromUtf8(accented[random.below(std::size(accented))]) +
               QLatin1String(syllables[random.below(std::size(syllables))]);
    }
    return name;
}

QString tagLine(Random& random) {
    if (random.chance(0.45))
        return QStringLiteral("EUW");
    static constexpr char alphabet[] = "ABCDEFGHJKLMNPQRSTUVWXYZ0123456789";
    const int length = random.between(3, 5);
    QString tag(length, Qt::Uninitialized);
    for (int i = 0; i < length; ++i)
        tag[i] = QLatin1Char(alphabet[random.below(static_cast<int>(std::size(alphabet)) - 1)]);
    return tag;
}

// ---------------------------------------------------------------------------------------------
// Ranks on one continuous scale: 400 per tier, 100 per division.

constexpr const char* tierNames[] = {"IRON", "BRONZE", "SILVER", "GOLD", "PLATINUM", "EMERALD", "DIAMOND", "MASTER"};
constexpr const char* divisionNames[] = {"IV", "III", "II", "I"};

struct Rank {
    QString tier;
    QString division;
    qint64 lp = 0;
};

Rank rankOf(int absolute) {
    absolute = std::max(0, absolute);
    if (absolute >= 2800)
        return {QStringLiteral("MASTER"), QStringLiteral("I"), absolute - 2800}; // reported with division I
    return {QLatin1String(tierNames[absolute / 400]), QLatin1String(divisionNames[(absolute % 400) / 100]),
            absolute % 100};
}

struct LadderState {
    int absolute = 0;
    int wins = 0;
    int losses = 0;
    int placementsLeft = 5;
    int season = 0;
};

// ---------------------------------------------------------------------------------------------
// Time: two seasons, 2024 and 2025, played mostly in the evening (UTC).

const qint64 archiveStart = QDateTime(QDate(2024, 1, 10), QTime(12, 0), QTimeZone::utc()).toSecsSinceEpoch();
const qint64 archiveEnd = QDateTime(QDate(2025, 12, 20), QTime(12, 0), QTimeZone::utc()).toSecsSinceEpoch();

QString backendTimestamp(qint64 seconds, int micros) {
    const QDateTime time = QDateTime::fromSecsSinceEpoch(seconds, QTimeZone::utc());
    return time.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")) + QLatin1Char('.') +
           QStringLiteral("%1").arg(micros, 6, 10, QLatin1Char('0')) + QStringLiteral("+00:00");
}

int yearOf(qint64 seconds) {
    return QDateTime::fromSecsSinceEpoch(seconds, QTimeZone::utc()).date().year();
}

double round2(double value) {
    return std::round(value * 100.0) / 100.0;
}

double round4(double value) {
    return std::round(value * 10000.0) / 10000.0;
}

// ---------------------------------------------------------------------------------------------
// JSON as the backend writes it: snake_case keys in field order, nulls for absent values.

class JsonObjectWriter {
public:
    explicit JsonObjectWriter(QByteArray& out) : m_out(out) { m_out += '{'; }
    ~JsonObjectWriter() { m_out += '}'; }
    JsonObjectWriter(const JsonObjectWriter&) = delete;
    JsonObjectWriter& operator=(const JsonObjectWriter&) = delete;

    JsonObjectWriter& integer(const char* key, qint64 value) {
        name(key);
        m_out += QByteArray::number(value);
        return *this;
    }
    JsonObjectWriter& real(const char* key, double value) {
        name(key);
        number(value);
        return *this;
    }
    JsonObjectWriter& flag(const char* key, bool value) {
        name(key);
        m_out += value ? "true" : "false";
        return *this;
    }
    JsonObjectWriter& text(const char* key, const QString& value) {
        name(key);
        string(value);
        return *this;
    }
    template <class T> JsonObjectWriter& optional(const char* key, const std::optional<T>& value) {
        if (!value) {
            name(key);
            m_out += "null";
        } else if constexpr (std::is_same_v<T, QString>) {
            text(key, *value);
        } else if constexpr (std::is_same_v<T, double>) {
            real(key, *value);
        } else if constexpr (std::is_same_v<T, bool>) {
            flag(key, *value);
        } else if constexpr (std::is_same_v<T, QList<qint64>>) {
            name(key);
            m_out += '[';
            for (qsizetype i = 0; i < value->size(); ++i) {
                if (i)
                    m_out += ',';
                m_out += QByteArray::number(value->at(i));
            }
            m_out += ']';
        } else {
            integer(key, *value);
        }
        return *this;
    }
    // Opens a nested value under key; the caller writes it.
    QByteArray& raw(const char* key) {
        name(key);
        return m_out;
    }

    static void string(QByteArray& out, const QString& value) {
        out += '"';
        const QByteArray utf8 = value.toUtf8();
        for (char c : utf8) {
            const auto byte = static_cast<unsigned char>(c);
            if (c == '"' || c == '\\') {
                out += '\\';
                out += c;
            } else if (byte < 0x20) {
                out += QByteArray("\\u00") + QByteArray::number(byte, 16).rightJustified(2, '0');
            } else {
                out += c;
            }
        }
        out += '"';
    }

private:
    void name(const char* key) {
        if (!m_first)
            m_out += ',';
        m_first = false;
        m_out += '"';
        m_out += key;
        m_out += "\":";
    }
    void string(const QString& value) { string(m_out, value); }
    void number(double value) {
        // The shortest text that reads back as the same double, as the backend writes numbers.
        m_out += QByteArray::number(std::isfinite(value) ? value : 0.0, 'g', QLocale::FloatingPointShortest);
    }

    QByteArray& m_out;
    bool m_first = true;
};

QByteArray snakeCase(const QString& camel) {
    QByteArray out;
    for (QChar c : camel) {
        if (c.isUpper()) {
            out += '_';
            out += c.toLower().toLatin1();
        } else {
            out += c.toLatin1();
        }
    }
    return out;
}

void writeMatch(QByteArray& out, const MatchDto& m) {
    JsonObjectWriter w(out);
    w.integer("id", m.id)
        .text("match_id", m.matchId)
        .text("platform", m.platform)
        .integer("queue_id", m.queueId)
        .optional("is_ranked", m.isRanked)
        .optional("game_creation", m.gameCreation)
        .integer("game_duration", m.gameDuration)
        .optional("game_version", m.gameVersion)
        .optional("game_mode", m.gameMode)
        .optional("season", m.season)
        .optional("updated_at", m.updatedAt);
}

void writeParticipant(QByteArray& out, const ParticipantDto& p) {
    JsonObjectWriter w(out);
    w.integer("id", p.id)
        .integer("match_id", p.matchId)
        .text("puuid", p.puuid)
        .optional("riot_id_game_name", p.riotIdGameName)
        .optional("riot_id_tag_line", p.riotIdTagLine)
        .integer("team_id", p.teamId)
        .flag("win", p.win)
        .integer("champion_id", p.championId)
        .text("champion_name", p.championName)
        .optional("team_position", p.teamPosition)
        .optional("champ_level", p.champLevel)
        .integer("kills", p.kills)
        .integer("deaths", p.deaths)
        .integer("assists", p.assists)
        .integer("total_cs", p.totalCs)
        .integer("gold_earned", p.goldEarned)
        .integer("vision_score", p.visionScore)
        .integer("damage_to_champions", p.damageToChampions)
        .optional("items", p.items)
        .optional("team_damage_pct", p.teamDamagePct)
        .optional("kill_participation", p.killParticipation)
        .optional("cs_per_min", p.csPerMin)
        .optional("rank_tier", p.rankTier)
        .optional("rank_division", p.rankDivision)
        .optional("rank_lp", p.rankLp);
}

void writeSnapshot(QByteArray& out, const RankSnapshotDto& r) {
    JsonObjectWriter w(out);
    w.integer("id", r.id)
        .integer("riot_account_id", r.riotAccountId)
        .text("queue", r.queue)
        .optional("tier", r.tier)
        .optional("division", r.division)
        .integer("lp", r.lp)
        .integer("wins", r.wins)
        .integer("losses", r.losses)
        .optional("captured_at", r.capturedAt);
}

void writeScore(QByteArray& out, const PerformanceScoreDto& s) {
    JsonObjectWriter w(out);
    w.integer("id", s.id)
        .integer("riot_account_id", s.riotAccountId)
        .integer("match_id", s.matchId)
        .integer("champion_id", s.championId)
        .optional("team_position", s.teamPosition)
        .real("score", s.score);
    {
        QByteArray& nested = w.raw("components");
        JsonObjectWriter components(nested);
        for (auto it = s.components.constBegin(); it != s.components.constEnd(); ++it)
            components.real(snakeCase(it.key()).constData(), it.value());
    }
    w.text("baseline_kind", s.baselineKind);
}

} // namespace

// ---------------------------------------------------------------------------------------------

struct SyntheticArchive::Generator {
    SyntheticArchive& archive;
    Random random;
    Player owner;
    std::vector<Player> friends;
    std::vector<double> friendWeights;
    std::vector<Player> strangers;
    std::array<LadderState, 2> ladders; // solo, flex
    // For each ranked game of the owner: the queue (0 solo, 1 flex), the game and the ladder after it.
    struct RankedGame {
        int queue;
        int game;
        LadderState after;
        qint64 endedAt;
    };
    std::vector<RankedGame> rankedGames;
    qint64 nextParticipantId = 1'000'001;
    qint64 matchNumber = 6'750'000'000;

    Generator(SyntheticArchive& owner, quint64 seed) : archive(owner), random(seed) {}

    void makePeople() {
        // The owner is the same person whatever the seed: screens and tests can name them.
        Random fixed(0x5175696c6c46ULL);
        owner.puuid = fixed.token(78);
        owner.gameName = QStringLiteral("Fernwhisper");
        owner.tagLine = QStringLiteral("EUW");

        RiotAccountDto account;
        account.id = ownerAccountId;
        account.puuid = owner.puuid;
        account.gameName = owner.gameName;
        account.tagLine = owner.tagLine;
        account.platform = QStringLiteral("euw1");
        account.region = QStringLiteral("europe");
        account.isOwner = true;
        account.profileIconId = 4568;
        account.summonerLevel = 412;
        archive.m_accounts = {account};

        for (const FriendSeed& seed : friendSeeds) {
            Player player;
            player.puuid = fixed.token(78);
            player.gameName = QString::fromUtf8(seed.name);
            player.tagLine = QString::fromUtf8(seed.tag);
            player.role = seed.role;
            double weight = 3;
            for (int id : seed.pool)
                player.pool.emplace_back(championIndex(id), weight--);
            player.lpOffset = fixed.normal(0, 120);
            friends.push_back(player);
            friendWeights.push_back(seed.weight);
            archive.m_friendPuuids << player.puuid;
            archive.m_friendNames << player.gameName->toLower();
            archive.m_friendRiotIds << *player.gameName + QLatin1Char('#') + player.tagLine;
        }

        // Enough strangers that most are met once or twice, as on a real server.
        const int strangerCount = std::max(200, archive.m_options.games * 6);
        strangers.reserve(strangerCount);
        for (int i = 0; i < strangerCount; ++i) {
            Player player;
            player.puuid = random.token(78);
            if (!random.chance(0.004))
                player.gameName = strangerName(random);
            player.tagLine = tagLine(random);
            player.role = static_cast<Role>(random.below(RoleCount));
            player.lpOffset = random.normal(0, 180);
            strangers.push_back(std::move(player));
        }
    }

    int pickQueue(int day) {
        std::array<double, queueCount> weights{};
        for (int i = 0; i < queueCount; ++i)
            weights[i] = isOpen(queues[i], day) ? queues[i].weight : 0;
        return random.weighted(weights);
    }

    int friendsFor(const QueueInfo& queue) {
        if (queue.map == Map::Arena)
            return random.chance(0.55) ? 1 : 0;
        if (queue.id == 420)
            return random.chance(0.25) ? 1 : 0;
        if (queue.id == 440) {
            constexpr std::array<double, 5> w{0.10, 0.30, 0.35, 0, 0.25}; // flex allows 1, 2, 3 or 5 together
            return random.weighted(w);
        }
        if (queue.map == Map::Abyss) {
            constexpr std::array<double, 4> w{0.50, 0.30, 0.15, 0.05};
            return random.weighted(w);
        }
        constexpr std::array<double, 5> w{0.45, 0.25, 0.15, 0.10, 0.05};
        return random.weighted(w);
    }

    int championFor(const Player* player, Role role, bool positions, const std::vector<int>& taken, bool isOwner) {
        auto free = [&](int index) { return std::find(taken.begin(), taken.end(), index) == taken.end(); };
        for (int attempt = 0; attempt < 40; ++attempt) {
            int index = -1;
            if (isOwner && positions && !random.chance(0.08)) {
                for (const OwnerPool& pool : ownerPools)
                    if (pool.role == role) {
                        std::array<double, 9> weights{};
                        for (int i = 0; i < 9; ++i)
                            weights[i] = pool.champions[i].second;
                        index = championIndex(pool.champions[random.weighted(weights)].first);
                    }
            } else if (player && !player->pool.empty() && (positions || random.chance(0.3)) && random.chance(0.85)) {
                std::vector<double> weights;
                for (const auto& [champion, weight] : player->pool)
                    weights.push_back(weight);
                index = player->pool[random.weighted(weights)].first;
            }
            if (index < 0) {
                if (positions && random.chance(0.85)) {
                    do
                        index = random.below(championCount);
                    while (champions[index].role != role);
                } else {
                    index = random.below(championCount);
                }
            }
            if (free(index))
                return index;
        }
        for (int index = 0; index < championCount; ++index)
            if (free(index))
                return index;
        return 0;
    }

    static QList<qint64> items(Random& random, const Champion& champion, Role role, bool rift, Map map,
                               double minutes) {
        QList<qint64> slots(7, 0);
        if (minutes < 5) {
            // A remake: the starting purchase and nothing more.
            slots[0] = starters[random.below(std::size(starters))];
            slots[1] = healthPotion;
            if (rift)
                slots[6] = stealthWard;
            return slots;
        }
        std::vector<int> bought;
        auto add = [&](int item) {
            if (std::find(bought.begin(), bought.end(), item) == bought.end())
                bought.push_back(item);
        };
        if (rift && role == Utility)
            add(supportQuest[random.below(std::size(supportQuest))]);
        if (rift && role == Jungle)
            add(junglePets[random.below(std::size(junglePets))]);
        const double pace = map == Map::Abyss ? 3.6 : map == Map::Arena ? 3.0 : map == Map::Blitz ? 3.2 : 5.8;
        int completed = std::clamp(static_cast<int>((minutes - 6) / pace + random.normal(0, 0.7)), 0, 6);
        if (map != Map::Arena && completed > 0 && random.chance(0.92)) {
            add(boots[random.below(std::size(boots))]);
            --completed;
        }
        auto fromPool = [&](const int* pool, std::size_t size) { add(pool[random.below(static_cast<int>(size))]); };
        for (int guard = 0; static_cast<int>(bought.size()) < 6 && completed > 0 && guard < 30; ++guard) {
            const std::size_t before = bought.size();
            switch (champion.build) {
            case Build::Physical:
                fromPool(physicalItems, std::size(physicalItems));
                break;
            case Build::Magic:
                fromPool(magicItems, std::size(magicItems));
                break;
            case Build::Tank:
                if (random.chance(0.8))
                    fromPool(tankItems, std::size(tankItems));
                else
                    fromPool(physicalItems, std::size(physicalItems));
                break;
            case Build::Enchanter:
                fromPool(supportItems, std::size(supportItems));
                break;
            }
            if (bought.size() > before)
                --completed;
        }
        if (rift && bought.size() < 6 && random.chance(0.35))
            add(controlWard);
        // Players leave gaps and shuffle their inventory.
        std::vector<int> order{0, 1, 2, 3, 4, 5};
        for (int i = 5; i > 0; --i)
            std::swap(order[i], order[random.below(i + 1)]);
        if (random.chance(0.6))
            std::sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(bought.size()));
        for (std::size_t i = 0; i < bought.size() && i < 6; ++i)
            slots[order[i]] = bought[i];
        if (rift)
            slots[6] = role == Utility || role == Jungle ? (random.chance(0.8) ? oracleLens : stealthWard)
                       : role == Bottom && minutes > 20 && random.chance(0.5) ? farsight
                                                                              : stealthWard;
        return slots;
    }

    void run() {
        const SyntheticArchiveOptions& options = archive.m_options;
        makePeople();
        archive.m_matches.reserve(options.games);
        archive.m_participants.reserve(static_cast<qsizetype>(options.games) * 10);
        archive.m_scores.reserve(options.games);

        ladders[0] = {random.between(900, 1150), 0, 0, 5, 2024};
        ladders[1] = {ladders[0].absolute - random.between(50, 250), 0, 0, 5, 2024};

        // Sessions of a few games each, spread evenly over the two seasons with some jitter. A
        // session starts where its first game lies in the whole, so that however the session
        // lengths fall, the last games are played before the archive's end.
        const int sessions = std::max(1, static_cast<int>(std::ceil(options.games / 4.5)));
        const double spacing = static_cast<double>(archiveEnd - archiveStart) / sessions;
        const double span = static_cast<double>(archiveEnd - archiveStart) - spacing;
        qint64 clock = archiveStart;
        int leftInSession = 0;

        for (int game = 0; game < options.games; ++game) {
            if (leftInSession == 0) {
                leftInSession = random.between(1, 8);
                const double progress = static_cast<double>(game) / std::max(1, options.games);
                qint64 start = archiveStart + static_cast<qint64>(progress * span + random.uniform() * 0.5 * spacing);
                const QDateTime at = QDateTime::fromSecsSinceEpoch(start, QTimeZone::utc());
                const int hour = at.time().hour();
                if (hour >= 1 && hour < 15) // most play after work: move the morning into the evening
                    start = QDateTime(at.date(), QTime(16, 0), QTimeZone::utc()).toSecsSinceEpoch() +
                            random.between(0, 5 * 3600);
                clock = std::max(start, clock + 1800);
            }
            --leftInSession;
            const qint64 created = clock;
            const int day = static_cast<int>((created - archiveStart) / 86400);
            const QueueInfo& queue = queues[pickQueue(day)];
            const qint64 duration = playGame(game, queue, created);
            clock = created + duration + random.between(90, 420);
        }
        makeSnapshots();
    }

    qint64 playGame(int game, const QueueInfo& queue, qint64 created) {
        const bool rift = queue.map == Map::Rift;
        const bool remake = rift && random.chance(0.012);
        const qint64 duration =
            remake ? random.between(185, 260)
                   : static_cast<qint64>(std::clamp(random.normal(queue.meanDuration, queue.durationDeviation),
                                                    queue.meanDuration * 0.45, queue.meanDuration * 1.75));
        const double minutes = static_cast<double>(duration) / 60.0;
        const int year = yearOf(created);
        const bool ranked = isRanked(queue.id);

        // Season start: a soft reset and fresh placements.
        for (LadderState& ladder : ladders)
            if (ladder.season != year) {
                ladder.season = year;
                ladder.absolute = static_cast<int>(ladder.absolute * 0.8);
                ladder.wins = ladder.losses = 0;
                ladder.placementsLeft = 5;
            }
        LadderState* ladder = queue.id == 420 ? &ladders[0] : queue.id == 440 ? &ladders[1] : nullptr;
        const int ownerLp = ladder ? ladder->absolute : ladders[0].absolute;

        // Who plays: the owner's side first, filled with friends, then strangers.
        const int teams = queue.map == Map::Arena ? 5 : 2;
        const int perTeam = 10 / teams;
        const int ownerTeam = random.below(teams);
        std::vector<const Player*> seats(10, nullptr);
        std::vector<Role> roles(10, Middle);
        std::vector<bool> usedFriend(friendCount, false);
        std::vector<const Player*> ownSide{&owner};
        for (int f = friendsFor(queue); f > 0 && static_cast<int>(ownSide.size()) < perTeam; --f) {
            int pick = random.weighted(friendWeights);
            for (int guard = 0; usedFriend[pick] && guard < 20; ++guard)
                pick = random.weighted(friendWeights);
            if (usedFriend[pick])
                break;
            usedFriend[pick] = true;
            ownSide.push_back(&friends[pick]);
        }

        if (rift) {
            // Positions: the owner's choice, then the friends' mains where free, then the rest.
            std::array<const Player*, RoleCount> ownRoles{};
            std::array<double, std::size(ownerPools)> poolWeights{};
            for (std::size_t i = 0; i < std::size(ownerPools); ++i)
                poolWeights[i] = ownerPools[i].weight;
            ownRoles[ownerPools[random.weighted(poolWeights)].role] = &owner;
            for (std::size_t i = 1; i < ownSide.size(); ++i) {
                Role wanted = ownSide[i]->role;
                if (ownRoles[wanted])
                    for (int r = 0; r < RoleCount; ++r)
                        if (!ownRoles[r]) {
                            wanted = static_cast<Role>(r);
                            break;
                        }
                ownRoles[wanted] = ownSide[i];
            }
            for (int team = 0; team < 2; ++team)
                for (int r = 0; r < RoleCount; ++r) {
                    const int seat = team * 5 + r;
                    roles[seat] = static_cast<Role>(r);
                    if (team == ownerTeam)
                        seats[seat] = ownRoles[r];
                }
        } else {
            for (std::size_t i = 0; i < ownSide.size(); ++i) {
                int seat = ownerTeam * perTeam + random.below(perTeam);
                while (seats[seat])
                    seat = ownerTeam * perTeam + (seat - ownerTeam * perTeam + 1) % perTeam;
                seats[seat] = ownSide[i];
            }
        }
        for (int seat = 0; seat < 10; ++seat)
            if (!seats[seat])
                seats[seat] = &strangers[random.below(static_cast<int>(strangers.size()))];

        std::vector<int> picks;
        for (int seat = 0; seat < 10; ++seat)
            picks.push_back(championFor(seats[seat], roles[seat], rift, picks, seats[seat] == &owner));

        // The result, and the fights that led to it.
        // On the ladder the owner wins more while below their true level and less above it, so
        // their rank follows a slowly rising skill instead of drifting off.
        double ownerWinChance = queue.map == Map::Arena ? 0.42 : 0.53;
        if (ladder) {
            const double progress = static_cast<double>(game) / std::max(1, archive.m_options.games);
            const double skill = 1050 + 1100 * progress - (ladder == &ladders[1] ? 150 : 0);
            ownerWinChance = std::clamp(0.5 + (skill - ladder->absolute) / 1500.0, 0.38, 0.62);
        }
        std::vector<bool> teamWon(teams, false);
        if (queue.map == Map::Arena) {
            // The top two duos count as a win.
            const bool ownerWon = random.chance(ownerWinChance);
            teamWon[ownerTeam] = ownerWon;
            for (int placed = ownerWon ? 1 : 0; placed < 2;) {
                const int other = random.below(teams);
                if (other != ownerTeam && !teamWon[other]) {
                    teamWon[other] = true;
                    ++placed;
                }
            }
        } else {
            const bool ownerWon = random.chance(ownerWinChance);
            teamWon[ownerTeam] = ownerWon;
            teamWon[1 - ownerTeam] = !ownerWon;
        }
        auto teamOf = [&](int seat) { return seat / perTeam; };

        std::array<int, 10> kills{}, deaths{}, assists{};
        std::array<double, 10> form{};
        for (double& f : form)
            f = std::clamp(random.normal(1.0, 0.3), 0.35, 2.0);
        auto killWeight = [&](int seat) {
            if (!rift)
                return form[seat];
            static constexpr double weights[RoleCount] = {1.0, 1.05, 1.25, 1.45, 0.35};
            return weights[roles[seat]] * form[seat];
        };
        auto assistChance = [&](int seat) {
            if (!rift)
                return queue.map == Map::Arena ? 0.7 : 0.6;
            static constexpr double chances[RoleCount] = {0.38, 0.55, 0.42, 0.45, 0.72};
            return chances[roles[seat]];
        };
        for (int team = 0; team < teams; ++team) {
            const double mean = queue.killsPerMinute * minutes * (teamWon[team] ? 1.3 : 0.75) * (remake ? 0.1 : 1.0);
            const int total = random.poisson(mean);
            std::vector<double> killers(perTeam), victims;
            std::vector<int> victimSeats;
            for (int i = 0; i < perTeam; ++i)
                killers[i] = killWeight(team * perTeam + i);
            for (int seat = 0; seat < 10; ++seat)
                if (teamOf(seat) != team) {
                    victimSeats.push_back(seat);
                    victims.push_back(rift && roles[seat] == Utility ? 1.15 / form[seat] : 1.0 / form[seat]);
                }
            for (int k = 0; k < total; ++k) {
                const int killer = team * perTeam + random.weighted(killers);
                ++kills[killer];
                ++deaths[victimSeats[random.weighted(victims)]];
                for (int i = 0; i < perTeam; ++i) {
                    const int mate = team * perTeam + i;
                    if (mate != killer && random.chance(assistChance(mate)))
                        ++assists[mate];
                }
            }
        }

        MatchDto match;
        match.id = game + 1;
        matchNumber += random.between(8'000, 40'000);
        match.matchId = QStringLiteral("EUW1_%1").arg(matchNumber);
        match.platform = QStringLiteral("EUW1");
        match.queueId = queue.id;
        match.isRanked = ranked;
        match.gameCreation = backendTimestamp(created, random.between(0, 999'999));
        match.gameDuration = duration;
        const int patch = std::clamp(
            1 + static_cast<int>(
                    (created - QDateTime(QDate(year, 1, 8), QTime(0, 0), QTimeZone::utc()).toSecsSinceEpoch()) /
                    (14 * 86400)),
            1, 24);
        match.gameVersion = QStringLiteral("%1.%2.%3.%4")
                                .arg(year - 2010)
                                .arg(patch)
                                .arg(random.between(400, 700))
                                .arg(random.between(1000, 9999));
        if (queue.mode)
            match.gameMode = QString::fromLatin1(queue.mode);
        match.season = year;
        match.updatedAt = backendTimestamp(created + duration + random.between(60, 3600), random.between(0, 999'999));
        archive.m_matches.append(match);

        // Per-player lines.
        std::array<qint64, 10> damage{};
        for (int seat = 0; seat < 10; ++seat) {
            const Champion& champion = champions[picks[seat]];
            double rate = champion.build == Build::Tank ? 480 : champion.build == Build::Enchanter ? 260 : 760;
            if (rift && roles[seat] == Utility && champion.build != Build::Magic)
                rate *= 0.7;
            if (queue.map == Map::Abyss || queue.map == Map::Blitz)
                rate *= 1.6;
            const double share = 0.55 + 0.12 * (kills[seat] + 0.5 * assists[seat]);
            damage[seat] = std::max<qint64>(0, std::lround(minutes * rate * form[seat] * std::min(share, 2.2)));
        }

        std::vector<qint64> teamKills(teams, 0), teamDamage(teams, 0);
        for (int seat = 0; seat < 10; ++seat) {
            teamKills[teamOf(seat)] += kills[seat];
            teamDamage[teamOf(seat)] += damage[seat];
        }

        for (int seat = 0; seat < 10; ++seat) {
            const Player& player = *seats[seat];
            const Champion& champion = champions[picks[seat]];
            const Role role = roles[seat];
            const bool won = teamWon[teamOf(seat)];

            ParticipantDto p;
            p.id = nextParticipantId++;
            p.matchId = match.id;
            p.puuid = player.puuid;
            p.riotIdGameName = player.gameName;
            p.riotIdTagLine = player.tagLine;
            p.teamId = 100 * (teamOf(seat) + 1);
            p.win = won;
            p.championId = champion.id;
            p.championName = QLatin1String(champion.name);
            if (rift)
                p.teamPosition = QLatin1String(positionNames[role]);
            else
                p.teamPosition = QString(); // the game reports no position off the Rift
            p.kills = kills[seat];
            p.deaths = deaths[seat];
            p.assists = assists[seat];

            double csRate = 0;
            if (rift) {
                static constexpr double rates[RoleCount] = {6.6, 5.6, 7.1, 7.6, 1.1};
                csRate = std::max(0.1, random.normal(rates[role], role == Utility ? 0.5 : 1.0));
            } else if (queue.map == Map::Abyss || queue.map == Map::Blitz) {
                csRate = std::max(0.2, random.normal(2.6, 0.9));
            }
            p.totalCs = std::lround(csRate * minutes);
            if (queue.map != Map::Arena && minutes > 0 && !random.chance(0.003))
                p.csPerMin = round2(static_cast<double>(p.totalCs) / minutes);

            const double passive = queue.map == Map::Abyss ? 190 : queue.map == Map::Arena ? 0 : 122;
            p.goldEarned =
                std::lround(500 + passive * minutes + 21.0 * static_cast<double>(p.totalCs) + 300.0 * kills[seat] +
                            110.0 * assists[seat] + (rift && role == Utility ? 70 * minutes : 0) +
                            (queue.map == Map::Arena ? 900 * minutes / 3 : 0) + random.normal(0, 250));
            p.goldEarned = std::max<qint64>(500, p.goldEarned);

            double visionRate = 0;
            if (rift) {
                static constexpr double rates[RoleCount] = {0.6, 1.1, 0.7, 0.6, 2.4};
                visionRate = std::max(0.0, random.normal(rates[role], rates[role] * 0.25));
            } else if (queue.map == Map::Abyss) {
                visionRate = std::max(0.0, random.normal(0.12, 0.06));
            }
            p.visionScore = std::lround(visionRate * minutes);
            p.damageToChampions = damage[seat];

            const double levelBase = rift                      ? 1.5 + minutes * 0.45
                                     : queue.map == Map::Arena ? 3 + minutes * 0.55
                                                               : 3 + minutes * 0.6;
            p.champLevel = std::clamp<qint64>(std::lround(levelBase + 0.05 * (kills[seat] + assists[seat]) -
                                                          (role == Utility && rift ? 1.5 : 0) + random.normal(0, 0.8)),
                                              1, 18);
            p.items = items(random, champion, role, rift, queue.map, minutes);

            const qint64 ownDamage = teamDamage[teamOf(seat)];
            if (!random.chance(0.003))
                p.teamDamagePct = ownDamage > 0 ? round4(static_cast<double>(damage[seat]) / ownDamage) : 0.0;
            const qint64 ownKills = teamKills[teamOf(seat)];
            p.killParticipation =
                ownKills > 0 ? round4(std::min(1.0, static_cast<double>(kills[seat] + assists[seat]) / ownKills)) : 0.0;

            if (ranked) {
                std::optional<Rank> rank;
                if (&player == &owner) {
                    if (ladder->placementsLeft == 0)
                        rank = rankOf(ownerLp);
                } else {
                    rank = rankOf(ownerLp + static_cast<int>(player.lpOffset + random.normal(0, 60)));
                }
                if (rank) {
                    p.rankTier = rank->tier;
                    p.rankDivision = rank->division;
                    p.rankLp = rank->lp;
                }
            }
            archive.m_participants.append(p);
        }

        const int ownerSeat = static_cast<int>(std::find(seats.begin(), seats.end(), &owner) - seats.begin());
        const ParticipantDto& me = archive.m_participants[archive.m_participants.size() - 10 + ownerSeat];
        archive.m_scores.append(score(match, me, remake));

        if (ladder) {
            if (ladder->placementsLeft > 0) {
                --ladder->placementsLeft;
                ladder->absolute += me.win ? random.between(25, 45) : -random.between(10, 30);
            } else {
                ladder->absolute += me.win ? random.between(17, 25) : -random.between(15, 23);
            }
            ladder->absolute = std::clamp(ladder->absolute, 0, 3300);
            (me.win ? ladder->wins : ladder->losses) += 1;
            rankedGames.push_back({queue.id == 420 ? 0 : 1, game, *ladder, created + duration});
        }
        return duration;
    }

    PerformanceScoreDto score(const MatchDto& match, const ParticipantDto& me, bool remake) {
        PerformanceScoreDto s;
        s.id = match.id + 500'000;
        s.riotAccountId = ownerAccountId;
        s.matchId = match.id;
        s.championId = me.championId;
        s.teamPosition = me.teamPosition;
        const double minutes = std::max(1.0, static_cast<double>(match.gameDuration) / 60.0);
        const double kda =
            static_cast<double>(me.kills + me.assists) / static_cast<double>(std::max<qint64>(1, me.deaths));
        s.components.insert(QStringLiteral("kda"), round2(std::min(100.0, kda * 18.0)));
        s.components.insert(QStringLiteral("killParticipation"), round2(me.killParticipation.value_or(0) * 100.0));
        s.components.insert(QStringLiteral("damageShare"),
                            round2(std::min(100.0, me.teamDamagePct.value_or(0) * 280.0)));
        s.components.insert(QStringLiteral("goldPerMin"), round2(std::min(100.0, me.goldEarned / minutes / 5.5)));
        if (me.teamPosition && !me.teamPosition->isEmpty()) {
            s.components.insert(QStringLiteral("csPerMin"), round2(std::min(100.0, me.csPerMin.value_or(0) * 11.0)));
            s.components.insert(QStringLiteral("visionPerMin"),
                                round2(std::min(100.0, static_cast<double>(me.visionScore) / minutes * 40.0)));
        }
        double total = 0;
        for (double part : s.components)
            total += part;
        const double mean = total / static_cast<double>(s.components.size());
        s.score =
            remake ? 0.0 : round2(std::clamp(mean * 0.8 + (me.win ? 12.0 : 0.0) + random.normal(0, 6), 0.0, 100.0));
        s.baselineKind = random.chance(0.8) ? QStringLiteral("self") : QStringLiteral("role");
        return s;
    }

    void makeSnapshots() {
        const SyntheticArchiveOptions& options = archive.m_options;
        const int wanted = options.rankSnapshots >= 0 ? options.rankSnapshots : options.games / 10;
        std::array<std::vector<const RankedGame*>, 2> byQueue;
        for (const RankedGame& g : rankedGames)
            byQueue[g.queue].push_back(&g);
        // Solo is looked at more often than flex.
        std::array<int, 2> counts{};
        counts[0] = std::min(static_cast<int>(byQueue[0].size()), static_cast<int>(std::lround(wanted * 0.7)));
        counts[1] = std::min(static_cast<int>(byQueue[1].size()), wanted - counts[0]);
        counts[0] = std::min(static_cast<int>(byQueue[0].size()), wanted - counts[1]);

        std::vector<const RankedGame*> chosen;
        for (int q = 0; q < 2; ++q) {
            const auto& list = byQueue[q];
            for (int k = 0; k < counts[q]; ++k)
                chosen.push_back(list[static_cast<std::size_t>(k) * list.size() / counts[q]]);
        }
        std::sort(chosen.begin(), chosen.end(),
                  [](const RankedGame* a, const RankedGame* b) { return a->game < b->game; });

        qint64 id = 90'001;
        for (const RankedGame* g : chosen) {
            RankSnapshotDto r;
            r.id = id++;
            r.riotAccountId = ownerAccountId;
            r.queue = g->queue == 0 ? QStringLiteral("RANKED_SOLO_5x5") : QStringLiteral("RANKED_FLEX_SR");
            if (g->after.placementsLeft == 0) {
                const Rank rank = rankOf(g->after.absolute);
                r.tier = rank.tier;
                r.division = rank.division;
                r.lp = rank.lp;
            }
            r.wins = g->after.wins;
            r.losses = g->after.losses;
            r.capturedAt = backendTimestamp(g->endedAt + random.between(30, 900), random.between(0, 999'999));
            archive.m_snapshots.append(r);
            archive.m_snapshotGame.push_back(g->game);
        }
    }
};

SyntheticArchive::SyntheticArchive(SyntheticArchiveOptions options) : m_options(options) {
    m_options.games = std::max(0, m_options.games);
    m_options.gamesPerPage = std::max(1, m_options.gamesPerPage);
    Generator generator(*this, m_options.seed);
    generator.run();
}

QSet<QString> SyntheticArchive::ownerPuuids() const {
    QSet<QString> puuids;
    for (const RiotAccountDto& account : m_accounts)
        puuids.insert(account.puuid);
    return puuids;
}

QStringList SyntheticArchive::friendPuuids() const {
    return m_friendPuuids;
}

QSet<QString> SyntheticArchive::friendGameNames() const {
    return QSet<QString>(m_friendNames.begin(), m_friendNames.end());
}

qsizetype SyntheticArchive::recordCount() const {
    return m_matches.size() + m_participants.size() + m_scores.size() + m_snapshots.size();
}

int SyntheticArchive::pageCount() const {
    return static_cast<int>((m_matches.size() + m_options.gamesPerPage - 1) / m_options.gamesPerPage);
}

QString SyntheticArchive::cursorBefore(int page) {
    if (page <= 0)
        return {};
    // Opaque to the client, as the backend's own cursors are.
    return QString::fromLatin1(QByteArray("{\"after_page\":" + QByteArray::number(page) + "}")
                                   .toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
}

int SyntheticArchive::pageForCursor(const QString& cursor) const {
    if (cursor.isEmpty())
        return 0;
    for (int page = 1; page <= pageCount(); ++page)
        if (cursorBefore(page) == cursor)
            return page;
    return -1;
}

QByteArray SyntheticArchive::pageBody(int page) const {
    const qsizetype per = m_options.gamesPerPage;
    const qsizetype first = std::clamp<qsizetype>(page * per, 0, m_matches.size());
    const qsizetype last = std::clamp<qsizetype>(first + per, 0, m_matches.size());
    const bool hasMore = last < m_matches.size();

    QByteArray out;
    out.reserve((last - first) * 8'000 + 256);
    {
        JsonObjectWriter body(out);
        {
            QByteArray& list = body.raw("matches");
            list += '[';
            for (qsizetype i = first; i < last; ++i) {
                if (i > first)
                    list += ',';
                writeMatch(list, m_matches[i]);
            }
            list += ']';
        }
        {
            QByteArray& list = body.raw("participants");
            list += '[';
            bool firstRow = true;
            for (qsizetype i = first * 10; i < last * 10 && i < m_participants.size(); ++i) {
                if (!firstRow)
                    list += ',';
                firstRow = false;
                writeParticipant(list, m_participants[i]);
            }
            list += ']';
        }
        {
            QByteArray& list = body.raw("rank_snapshots");
            list += '[';
            bool firstRow = true;
            for (qsizetype i = 0; i < m_snapshots.size(); ++i) {
                if (m_snapshotGame[i] < first || m_snapshotGame[i] >= last)
                    continue;
                if (!firstRow)
                    list += ',';
                firstRow = false;
                writeSnapshot(list, m_snapshots[i]);
            }
            list += ']';
        }
        {
            QByteArray& list = body.raw("performance_scores");
            list += '[';
            for (qsizetype i = first; i < last; ++i) {
                if (i > first)
                    list += ',';
                writeScore(list, m_scores[i]);
            }
            list += ']';
        }
        // The final page still names where a later pull resumes.
        body.text("next_cursor", cursorBefore(std::min(page + 1, pageCount())));
        body.flag("has_more", hasMore);
    }
    return out;
}

void SyntheticArchive::fill(ArchiveStore& store) const {
    for (const MatchDto& dto : m_matches)
        store.matches().insert(std::make_unique<LocalMatch>(dto));
    for (const ParticipantDto& dto : m_participants)
        store.participants().insert(std::make_unique<LocalParticipant>(dto));
    for (const RankSnapshotDto& dto : m_snapshots)
        store.rankSnapshots().insert(std::make_unique<LocalRankSnapshot>(dto));
    for (const PerformanceScoreDto& dto : m_scores)
        store.performanceScores().insert(std::make_unique<LocalPerformanceScore>(dto));
    store.save();
}

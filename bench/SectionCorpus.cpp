// SectionCorpus: section texts of a steel-building take-off, drawn from catalogue sizes and
// plausible welded dimensions, then typed with the spaces and lower case users leave in.
#include "bench/SectionCorpus.h"

#include <QFile>
#include <QSet>

#include <algorithm>
#include <vector>

namespace bxq {
namespace bench {
namespace {

// splitmix64: the same stream on every compiler, unlike the standard distributions.
class Rng {
public:
    explicit Rng(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t next() {
        std::uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    int below(int n) { return static_cast<int>(next() % static_cast<std::uint64_t>(n)); }
    int between(int lo, int hi) { return lo + below(hi - lo + 1); }
    // lo, lo + step, ... up to hi
    int stepped(int lo, int hi, int step) { return lo + step * below((hi - lo) / step + 1); }
    double unit() { return static_cast<double>(next() >> 11) * (1.0 / 9007199254740992.0); }
    bool chance(double p) { return unit() < p; }
    template <typename T, std::size_t N>
    const T& pick(const T (&items)[N]) { return items[below(static_cast<int>(N))]; }

private:
    std::uint64_t m_state;
};

QString num(double value) { return QString::number(value, 'g', 10); }

QString join(std::initializer_list<double> values) {
    QString text;
    for (double value : values) {
        if (!text.isEmpty()) text += QLatin1Char('*');
        text += num(value);
    }
    return text;
}

// Catalogue sizes (h*b*tw*t) of hot-rolled H sections by series.
const char* const kHW[] = {"100*100*6*8",   "125*125*6.5*9",  "150*150*7*10",  "175*175*7.5*11",
                           "200*200*8*12",  "200*204*12*12",  "250*250*9*14",  "250*255*14*14",
                           "294*302*12*12", "300*300*10*15",  "300*305*15*15", "344*348*10*16",
                           "350*350*12*19", "388*402*15*15",  "394*398*11*18", "400*400*13*21",
                           "400*408*21*21", "414*405*18*28",  "428*407*20*35"};
const char* const kHM[] = {"148*100*6*9",   "194*150*6*9",    "244*175*7*11",  "294*200*8*12",
                           "340*250*9*14",  "390*300*10*16",  "440*300*11*18", "482*300*11*15",
                           "488*300*11*18", "582*300*12*17",  "588*300*12*20", "594*302*14*23"};
const char* const kHN[] = {"100*50*5*7",    "125*60*6*8",     "150*75*5*7",    "175*90*5*8",
                           "198*99*4.5*7",  "200*100*5.5*8",  "248*124*5*8",   "250*125*6*9",
                           "298*149*5.5*8", "300*150*6.5*9",  "346*174*6*9",   "350*175*7*11",
                           "396*199*7*11",  "400*200*8*13",   "446*199*8*12",  "450*200*9*14",
                           "496*199*9*14",  "500*200*10*16",  "596*199*10*15", "600*200*11*17",
                           "700*300*13*24", "800*300*14*26",  "900*300*16*28"};
const char* const kHT[] = {"100*50*3.2*4.5", "150*75*3.2*4.5", "200*100*3.2*4.5", "250*125*4.5*6",
                           "300*150*4.5*6"};
const char* const kHP[] = {"200*204*12*12", "244*252*11*11", "294*300*12*12", "300*305*15*15", "338*351*13*13"};
// Hot-rolled T cut from H: half the depth, then b, tw, t.
const char* const kTW[] = {"50*100*6*8", "75*150*7*10", "100*200*8*12", "125*250*9*14", "150*300*10*15",
                           "175*350*12*19", "200*400*13*21"};
const char* const kTM[] = {"74*100*6*9", "97*150*6*9", "122*175*7*11", "147*200*8*12", "170*250*9*14",
                           "195*300*10*16", "220*300*11*18"};
const char* const kTN[] = {"50*50*5*7", "62.5*60*6*8", "75*75*5*7", "100*100*5.5*8", "125*125*6*9",
                           "150*150*6.5*9", "175*175*7*11", "200*200*8*13", "225*200*9*14", "250*200*10*16"};
const char* const kIBeam[] = {"10",  "12",  "12.6", "14",  "16",  "18",  "20a", "20b", "22a", "22b", "24a",
                              "24b", "25a", "25b",  "27a", "27b", "28a", "28b", "30a", "30b", "32a", "32b",
                              "32c", "36a", "36b",  "36c", "40a", "40b", "40c", "45a", "45b", "45c", "50a",
                              "50b", "50c", "56a",  "56b", "56c", "63a", "63b", "63c"};
const char* const kChannel[] = {"5",   "6.3", "6.5", "8",   "10",  "12",  "12.6", "14a", "14b", "16a",
                                "16b", "18a", "18b", "20a", "20b", "22a", "22b",  "24a", "24b", "25a",
                                "25b", "25c", "27a", "28a", "28b", "28c", "30a",  "30b", "32a", "32b",
                                "32c", "36a", "36b", "36c", "40a", "40b", "40c"};
// Equal angles: leg and the range of its thicknesses.
struct Angle {
    int leg, thinnest, thickest;
};
const Angle kEqualAngles[] = {{20, 3, 4},   {25, 3, 4},   {30, 3, 4},    {36, 3, 5},    {40, 3, 5},
                              {45, 3, 6},   {50, 3, 6},   {56, 3, 8},    {63, 4, 10},   {70, 4, 8},
                              {75, 5, 10},  {80, 5, 10},  {90, 6, 12},   {100, 6, 16},  {110, 7, 14},
                              {125, 8, 14}, {140, 10, 16}, {160, 10, 16}, {180, 12, 18}, {200, 14, 24}};
struct UnequalAngle {
    int longLeg, shortLeg, thinnest, thickest;
};
const UnequalAngle kUnequalAngles[] = {
    {25, 16, 3, 4},  {32, 20, 3, 4},   {40, 25, 3, 4},    {45, 28, 3, 4},    {50, 32, 3, 4},
    {56, 36, 3, 5},  {63, 40, 4, 7},   {70, 45, 4, 7},    {75, 50, 5, 10},   {80, 50, 5, 8},
    {90, 56, 5, 8},  {100, 63, 6, 10}, {100, 80, 6, 10},  {110, 70, 6, 10},  {125, 80, 7, 12},
    {140, 90, 8, 14}, {160, 100, 10, 16}, {180, 110, 10, 16}, {200, 125, 12, 18}};
const int kPipeDiameters[] = {48,  60,  76,  89,  102, 108, 114, 127, 133, 140, 159, 168, 180, 194,
                              219, 245, 273, 299, 325, 351, 377, 402, 426, 480, 508, 530, 610};
const double kPipeWalls[] = {3, 3.5, 4, 4.5, 5, 6, 8, 10, 12, 14, 16, 20};
const double kColdThickness[] = {1.5, 1.8, 2, 2.2, 2.5, 3};
const int kWebs[] = {6, 8, 10, 12, 14, 16, 18, 20};
const int kFlanges[] = {8, 10, 12, 14, 16, 18, 20, 22, 25, 28, 30, 32, 36, 40};
const int kPlates[] = {6, 8, 10, 12, 14, 16, 18, 20, 22, 25, 28, 30};
const int kBoltBalls[] = {100, 120, 140, 160, 180, 200, 220, 250, 280, 300};
const int kWeldBalls[] = {200, 250, 300, 350, 400, 450, 500, 550, 600, 700, 800};
const int kBallWalls[] = {6, 8, 10, 12, 14, 16, 18, 20};
const char* const kUserSections[] = {"Z270*80*8*3", "C250*75*20*2.5", "U120*60*5", "L125*80*8", "HX300*200*6*10",
                                     "Z300*90*20*3", "C180*70*20*2.2"};

int width(Rng& r, int below) {
    static const int widths[] = {150, 180, 200, 220, 250, 280, 300, 350, 400, 450, 500};
    int b = r.pick(widths);
    if (b >= below) b = widths[0];
    return b;
}

// A flange plate at least as thick as the web and not out of proportion to the depth.
int flange(Rng& r, int web, int depth) {
    const int thickest = std::max(web, depth / 12);
    int t = r.pick(kFlanges);
    for (int tries = 0; (t < web || t > thickest) && tries < 16; ++tries) t = r.pick(kFlanges);
    return t < web || t > thickest ? web : t;
}

QString weldedH(Rng& r) {
    const int h = r.chance(0.7) ? r.stepped(200, 800, 50) : r.stepped(850, 1500, 50);
    const int b = width(r, h);
    const int tw = r.pick(kWebs);
    const int t1 = flange(r, tw, h);
    if (r.chance(0.75)) return QStringLiteral("H") + join({double(h), double(b), double(tw), double(t1)});
    return QStringLiteral("H") + join({double(h), double(b), double(tw), double(t1), double(flange(r, tw, h))});
}

QString unequalH(Rng& r) {
    const int h = r.stepped(300, 1200, 50);
    const int b1 = width(r, h), b2 = width(r, h);
    const int tw = r.pick(kWebs);
    QString text = QStringLiteral("H%1*%2/%3*%4*%5").arg(h).arg(b1).arg(b2).arg(tw).arg(flange(r, tw, h));
    if (r.chance(0.5)) text += QStringLiteral("*%1").arg(flange(r, tw, h));
    return text;
}

QString box(Rng& r) {
    const int b1 = r.stepped(200, 800, 50);
    if (r.chance(0.5)) return QStringLiteral("B") + join({double(b1), double(r.pick(kPlates)), double(r.pick(kPlates))});
    const int b2 = r.stepped(200, b1, 50);
    return QStringLiteral("B") + join({double(b1), double(b2), double(r.pick(kPlates)), double(r.pick(kPlates))});
}

QString weldedPipe(Rng& r) {
    return QStringLiteral("HD") + join({double(r.stepped(500, 1500, 100)), double(r.pick(kPlates))});
}

// One H of a cruciform section; each H must fit between the flanges of the other.
QString crossPart(Rng& r, int h, int b) {
    QString part = join({double(h), double(b), double(r.pick(kWebs)), double(r.stepped(10, 30, 2))});
    if (r.chance(0.3)) part += QStringLiteral("*%1").arg(r.stepped(10, 30, 2));
    return part;
}

QString cross(Rng& r) {
    const int h1 = r.stepped(300, 800, 50);
    const int b1 = std::min(h1 - 100, r.stepped(200, 400, 50));
    int h2 = h1, b2 = b1;
    if (r.chance(0.4)) {
        h2 = r.stepped(std::max(300, b1 + 100), 800, 50);
        b2 = std::min(h1 - 100, r.stepped(200, 400, 50));
    }
    return QStringLiteral("H") + crossPart(r, h1, b1) + QStringLiteral("+H") + crossPart(r, h2, b2);
}

QString weldedT(Rng& r) {
    const int h = r.stepped(150, 600, 25);
    QString text = QStringLiteral("T") + join({double(h), double(r.stepped(150, 400, 50)), double(r.pick(kWebs))});
    if (r.chance(0.4)) text += QStringLiteral("*%1").arg(r.pick(kFlanges));
    return text;
}

QString taperedH(Rng& r) {
    const int h1 = r.stepped(500, 1200, 50);
    const int h2 = std::max(250, h1 - r.stepped(100, 400, 50));
    const int tw = r.pick(kWebs);
    QString text =
        QStringLiteral("H(%1~%2)*%3*%4*%5").arg(h1).arg(h2).arg(width(r, h2)).arg(tw).arg(flange(r, tw, h2));
    if (r.chance(0.4)) text += QStringLiteral("*%1").arg(flange(r, tw, h2));
    return text;
}

QString weldedD(Rng& r) {
    const int r1 = r.stepped(400, 1200, 50);
    return QStringLiteral("D%1~%2*%3").arg(r1).arg(r1 - r.stepped(50, 200, 50)).arg(r.pick(kPlates));
}

QString weldedBB(Rng& r) {
    const int big1 = r.stepped(500, 1000, 50), big2 = r.stepped(400, big1, 50);
    return QStringLiteral("BB") + join({double(big1), double(big2), double(big1 - 200), double(big2 - 200),
                                        double(r.pick(kPlates)), double(r.pick(kPlates))});
}

QString weldedTY(Rng& r) {
    const int r1 = r.stepped(600, 1200, 50), r2 = r.stepped(500, r1, 50);
    return QStringLiteral("TY") + join({double(r1), double(r2), double(r1 - 200), double(r2 - 200), double(r.pick(kPlates))});
}

QString twoDepthH(Rng& r) {
    const int h1 = r.stepped(500, 1200, 50), h2 = h1 - r.stepped(100, 300, 50);
    const int tw = r.pick(kWebs);
    return QStringLiteral("H%1/%2*%3*%4*%5*%6")
        .arg(h1)
        .arg(h2)
        .arg(width(r, h2))
        .arg(tw)
        .arg(flange(r, tw, h2))
        .arg(flange(r, tw, h2));
}

QString hotRolledH(Rng& r) {
    switch (r.below(10)) {
    case 0: case 1: case 2: return QStringLiteral("HW") + QLatin1String(r.pick(kHW));
    case 3: case 4: return QStringLiteral("HM") + QLatin1String(r.pick(kHM));
    case 5: case 6: case 7: return QStringLiteral("HN") + QLatin1String(r.pick(kHN));
    case 8: return QStringLiteral("HT") + QLatin1String(r.pick(kHT));
    default: return QStringLiteral("HP") + QLatin1String(r.pick(kHP));
    }
}

QString hotRolledT(Rng& r) {
    switch (r.below(3)) {
    case 0: return QStringLiteral("TW") + QLatin1String(r.pick(kTW));
    case 1: return QStringLiteral("TM") + QLatin1String(r.pick(kTM));
    default: return QStringLiteral("TN") + QLatin1String(r.pick(kTN));
    }
}

QString equalAngle(Rng& r) {
    const Angle& a = r.pick(kEqualAngles);
    return QStringLiteral("L%1*%2").arg(a.leg).arg(r.between(a.thinnest, a.thickest));
}

QString unequalAngle(Rng& r) {
    const UnequalAngle& a = r.pick(kUnequalAngles);
    return QStringLiteral("L%1*%2*%3").arg(a.longLeg).arg(a.shortLeg).arg(r.between(a.thinnest, a.thickest));
}

QString pipe(Rng& r) {
    const int d = r.pick(kPipeDiameters);
    double t = r.pick(kPipeWalls);
    while (t * 8 > d) t = kPipeWalls[0];
    return QStringLiteral("D") + join({double(d), t});
}

QString roundBar(Rng& r) { return QStringLiteral("D%1").arg(r.stepped(10, 60, 2)); }

QString cSection(Rng& r) {
    const int h = r.stepped(80, 300, 20);
    return QStringLiteral("C") + join({double(h), double(r.stepped(40, 80, 10)), double(r.stepped(15, 25, 5)),
                                       r.pick(kColdThickness)});
}

QString zSection(Rng& r) {
    const int h = r.stepped(100, 300, 20);
    return QStringLiteral("Z") + join({double(h), double(r.stepped(40, 90, 10)), double(r.stepped(15, 25, 5)),
                                       r.pick(kColdThickness)});
}

QString boxTube(Rng& r) {
    const int b = r.stepped(40, 400, 10);
    const int t = std::min(16, std::max(2, b / r.between(15, 40)));
    if (r.chance(0.7)) return QStringLiteral("□%1*%1*%2").arg(b).arg(t);
    return QStringLiteral("□%1*%2*%3").arg(b).arg(std::max(20, b / 2)).arg(t);
}

QString iBeam(Rng& r) { return QStringLiteral("I") + QLatin1String(r.pick(kIBeam)); }
QString channel(Rng& r) { return QStringLiteral("[") + QLatin1String(r.pick(kChannel)); }

QString boltBall(Rng& r) { return QStringLiteral("BS%1").arg(r.pick(kBoltBalls)); }
QString weldBall(Rng& r) {
    return QStringLiteral("%1%2*%3").arg(r.chance(0.3) ? "WSR" : "WS").arg(r.pick(kWeldBalls)).arg(r.pick(kBallWalls));
}

QString barePlate(Rng& r) {
    if (r.chance(0.3)) return num(r.stepped(100, 600, 10));
    return QStringLiteral("%1*%2").arg(r.stepped(100, 800, 10)).arg(r.pick(kPlates));
}

QString custom(Rng& r) { return QStringLiteral("自定义截面%1").arg(r.between(1, 12)); }

QString userSection(Rng& r) { return QLatin1String(r.pick(kUserSections)) + QStringLiteral("(ZDY)"); }

// Share of each kind in a steel-building take-off, in parts per thousand.
struct Kind {
    int weight;
    QString (*make)(Rng&);
};
const Kind kKinds[] = {
    {240, weldedH},   {140, hotRolledH},  {30, unequalH},     {50, box},          {10, weldedPipe},
    {10, cross},        {20, weldedT},      {20, taperedH},     {3, weldedD},       {3, weldedBB},
    {3, weldedTY},      {5, twoDepthH},     {20, hotRolledT},   {70, equalAngle},   {40, unequalAngle},
    {60, channel},      {50, iBeam},        {70, pipe},         {25, roundBar},     {45, boxTube},
    {40, cSection},     {20, zSection},     {5, boltBall},      {12, weldBall},     {4, barePlate},
    {3, custom},        {2, userSection},
};

QString section(Rng& r) {
    static const int total = [] {
        int sum = 0;
        for (const Kind& kind : kKinds) sum += kind.weight;
        return sum;
    }();
    int at = r.below(total);
    for (const Kind& kind : kKinds) {
        if (at < kind.weight) return kind.make(r);
        at -= kind.weight;
    }
    return kKinds[0].make(r);
}

// The text as a user leaves it: code in lower case, a blank after the code or around every
// "*", stray blanks at the ends. A "(ZDY)" mark is kept as the user store wrote it.
QString typed(Rng& r, const QString& section) {
    const int userMark = section.indexOf(QStringLiteral("(ZDY)"));
    QString body = userMark >= 0 ? section.left(userMark) : section;
    const QString mark = userMark >= 0 ? section.mid(userMark) : QString();
    if (r.chance(0.15)) body = body.toLower();
    if (r.chance(0.12)) {
        int digit = 0;
        while (digit < body.size() && !body[digit].isDigit() && body[digit] != QLatin1Char('(')) ++digit;
        if (digit > 0 && digit < body.size()) body.insert(digit, QLatin1Char(' '));
    }
    if (r.chance(0.06)) body.replace(QLatin1Char('*'), QStringLiteral(" * "));
    if (r.chance(0.03)) body.replace(QLatin1Char('*'), QStringLiteral("*  "));
    QString text = body + mark;
    if (r.chance(0.04)) text.prepend(QLatin1Char(' '));
    if (r.chance(0.04)) text.append(QLatin1Char(' '));
    return text;
}

// count distinct typed sections; stops early only if the generator runs dry.
QStringList distinctTexts(Rng& r, int count) {
    QStringList texts;
    QSet<QString> seen;
    texts.reserve(count);
    seen.reserve(count);
    for (long long attempts = 0; texts.size() < count && attempts < 100LL * count + 1000; ++attempts) {
        QString text = typed(r, section(r));
        if (seen.contains(text)) continue;
        seen.insert(text);
        texts.append(text);
    }
    return texts;
}

}  // namespace

QStringList SectionCorpus::takeOff(int count, std::uint64_t seed) {
    Rng r(seed);
    const QStringList pool = distinctTexts(r, kPoolSize);
    // Zipf weights 1/rank: the first pool texts are the model's everyday sections.
    std::vector<double> cumulative(pool.size());
    double sum = 0;
    for (int i = 0; i < pool.size(); ++i) cumulative[i] = (sum += 1.0 / (i + 1));
    QStringList texts;
    texts.reserve(count);
    for (int i = 0; i < count; ++i) {
        const double at = r.unit() * sum;
        const auto found = std::upper_bound(cumulative.begin(), cumulative.end(), at);
        texts.append(pool[std::min<int>(int(found - cumulative.begin()), pool.size() - 1)]);
    }
    return texts;
}

QStringList SectionCorpus::distinct(int count, std::uint64_t seed) {
    Rng r(seed);
    return distinctTexts(r, count);
}

bool SectionCorpus::write(const QString& path, const QStringList& texts) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) return false;
    QByteArray data;
    for (const QString& text : texts) data += text.toUtf8() + '\n';
    return file.write(data) == data.size();
}

}  // namespace bench
}  // namespace bxq

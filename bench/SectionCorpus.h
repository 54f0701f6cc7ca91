// SectionCorpus: deterministic section specification texts as users type them in a building
// take-off, every type code mixed, for the parser benchmarks and the throughput script.
#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>

namespace bxq {
namespace bench {

class SectionCorpus {
public:
    static constexpr std::uint64_t kSeed = 20240611;
    // Distinct texts a take-off draws its members from (sections times the ways they are typed).
    static constexpr int kPoolSize = 3000;

    // count texts drawn with repetition from a pool of kPoolSize distinct texts, a few sections
    // used very often and most rarely (Zipf weights), as members of one model repeat them.
    static QStringList takeOff(int count, std::uint64_t seed = kSeed);
    // count texts, no two alike: the same type mix without repetition.
    static QStringList distinct(int count, std::uint64_t seed = kSeed);

    // One text per line, UTF-8. False when the file cannot be written.
    static bool write(const QString& path, const QStringList& texts);
};

}  // namespace bench
}  // namespace bxq

// Projects of members on a grid 2 m apart for the model-scale benchmarks: ten sections by ten
// lengths, or all one H400 of 6 m; a head and a tail cutting plane 300 mm in on every cut member.
#pragma once

#include <QString>

class VMPProjectModel;

namespace bxq {
namespace bench {

// count members written to a new project at path; every cutEvery-th member cut (none for 0);
// oneSection: every member an H400*200*8*13 of 6 m instead of the ten sections and lengths.
bool writeModelProject(const QString& path, int count, int cutEvery, bool oneSection);
// Members of the model get their solids from the body builder.
void useMemberSolids(VMPProjectModel& model);

}  // namespace bench
}  // namespace bxq

// The solid shape of a straight member, built by the body builder.
#include "body_builder/SKRMemberSolidShape.h"

#include "body_builder/SKRBodyBuilder.h"

namespace skr {
namespace body {

ndp::CBody* SKRMemberSolidShape::createBody() {
    m_lastError.clear();
    return SKRBodyBuilder::memberFromSpecification(m_specification, m_length, m_headFrame, &m_lastError);
}

}  // namespace body
}  // namespace skr

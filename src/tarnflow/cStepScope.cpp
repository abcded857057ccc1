#include <tarnflow/cStepScope.h>

#include <tarnflow/cStation.h>

namespace {
thread_local cStepScope* s_current = nullptr;
} // namespace

cStepScope::Suspension::Suspension() : m_suspended(s_current) { s_current = nullptr; }

cStepScope::Suspension::~Suspension() { s_current = m_suspended; }

cStepScope::cStepScope(cStation* i_station) : m_outer(s_current), m_station(i_station) { s_current = this; }

cStepScope::~cStepScope() { s_current = m_outer; }

cStepScope::EOutcome cStepScope::getOutcome() const
{
    if (m_lost)
        return EOutcome::Lost;
    if (m_sent)
        return EOutcome::Used;
    if (m_ignored)
        return EOutcome::Ignored;
    // A step that asked nobody has done its work without an output.
    return m_asked && !m_wanted ? EOutcome::Gated : EOutcome::Used;
}

void cStepScope::noteRequest(bool i_wanted)
{
    if (!s_current)
        return;
    s_current->m_asked = true;
    s_current->m_wanted = s_current->m_wanted || i_wanted;
}

void cStepScope::noteSent()
{
    if (s_current)
        s_current->m_sent = true;
}

void cStepScope::noteLost()
{
    if (s_current)
        s_current->m_lost = true;
}

void cStepScope::noteIgnored()
{
    if (s_current)
        s_current->m_ignored = true;
}

void cStepScope::noteMisfit(const cGraphError& i_misfit)
{
    if (s_current && s_current->m_station)
        s_current->m_station->noteMisfit(i_misfit);
}

#pragma once

#include <tarnflow/cIPortQueue.h>
#include <tarnflow/cPortGroupBase.h>
#include <tuple>

/**
 * The typed state of a port group: its queues (a std::tuple of cIPortQueue) and its histories (a std::tuple
 * of cPortHistory), one of each for each port. The rules know neither type; they stand in the base.
 */
template <class Queues, class History> class cPortGroupBaseT : public cPortGroupBase {
public:
    using cPortGroupBase::cPortGroupBase;
    ~cPortGroupBaseT() override { releaseEverything(); }

    static constexpr std::size_t s_portCount = std::tuple_size_v<Queues>;

    /** The queue of a port; a station sets `required` and its siblings here. */
    template <std::size_t I> auto& getQueue() { return std::get<I>(m_queues); }
    template <std::size_t I> const auto& getQueue() const { return std::get<I>(m_queues); }

    /** For the process step: the value of a port in the match that is under way; a default one if there is
     * none. */
    template <std::size_t I> const auto& getValue() const { return std::get<I>(m_history).getValue(); }
    /** For the process step: the buffer of a port in the match that is under way; null if there is none. */
    template <std::size_t I> auto* getBuffer() const { return std::get<I>(m_history).getBuffer(); }

protected:
    Queues m_queues;
    History m_history;
};

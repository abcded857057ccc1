#pragma once

#include <tarnflow/cIPort.h>
#include <tarnflow/cPortGroupBaseT.h>
#include <utility>

/**
 * The inputs of a station, of the types T, matched by their stamps. A member of the station, before its
 * functor.
 *
 *     class cSumStation : public cStation {
 *         cPortGroup<double, double> m_group {this, &cSumStation::process, QStringLiteral("a"),
 * QStringLiteral("b")}; cOPort<double> m_out {this, QStringLiteral("sum"), 50000}; void process() {
 * m_out.send(m_group.getValue<0>() + m_group.getValue<1>(), m_group.getStamp()); }
 *     };
 *
 * The step is a member function of the station or a function, and runs on the station's thread under its
 * input mutex. It takes nothing, or the index of the first port's queue. In a group with a single port it can
 * also take the buffer, with or without the index: then it runs once for each buffer of the match.
 *
 * All inputs are required until the station says otherwise: `getQueue<1>().required = false`.
 */
template <class... T>
class cPortGroup : public cPortGroupBaseT<std::tuple<cIPortQueue<T>...>, std::tuple<cPortHistory<T>...>> {
    static_assert(sizeof...(T) > 0);
    using Base = cPortGroupBaseT<std::tuple<cIPortQueue<T>...>, std::tuple<cPortHistory<T>...>>;
    template <class> using Name = QString;

public:
    using Buffer = cBufferT<std::tuple_element_t<0, std::tuple<T...>>>; ///< of the first port

    cPortGroup(cStation* i_station, std::function<void()> i_step, const Name<T>&... i_names) : Base(i_station)
    {
        this->m_callback = std::move(i_step);
        build(std::index_sequence_for<T...>(), i_names...);
    }
    cPortGroup(cStation* i_station, std::function<void(int)> i_step, const Name<T>&... i_names)
        : Base(i_station)
    {
        this->m_indexedCallback = std::move(i_step);
        build(std::index_sequence_for<T...>(), i_names...);
    }
    cPortGroup(cStation* i_station, std::function<void(Buffer*)> i_step, const Name<T>&... i_names) requires(
        sizeof...(T) == 1)
        : Base(i_station),
          m_bufferCallback(std::move(i_step))
    {
        build(std::index_sequence_for<T...>(), i_names...);
    }
    cPortGroup(cStation* i_station, std::function<void(int, Buffer*)> i_step,
        const Name<T>&... i_names) requires(sizeof...(T) == 1)
        : Base(i_station),
          m_indexedBufferCallback(std::move(i_step))
    {
        build(std::index_sequence_for<T...>(), i_names...);
    }
    /** The step is a member function of the station, which may be declared in a base of it. */
    template <class Station, class Owner, class... Arguments>
    cPortGroup(Station* i_station, void (Owner::*i_step)(Arguments...), const Name<T>&... i_names)
        : cPortGroup(i_station,
            std::function<void(Arguments...)>(
                [i_station, i_step](Arguments... i_arguments) { (i_station->*i_step)(i_arguments...); }),
            i_names...)
    {
    }

    template <std::size_t I> auto& getPort() { return std::get<I>(m_ports); }
    template <std::size_t I> const auto& getPort() const { return std::get<I>(m_ports); }

protected:
    void runStep(cFates& io_seen) override
    {
        if (sizeof...(T) > 1 || this->hasSetCallback()) {
            Base::runStep(io_seen);
            return;
        }
        for (cBuffer* untyped : std::get<0>(this->m_history).getFirstEntry()) {
            auto* buffer = static_cast<Buffer*>(untyped);
            if (m_bufferCallback)
                this->runWatched(io_seen, [this, buffer] { m_bufferCallback(buffer); });
            else if (m_indexedBufferCallback)
                this->runWatched(io_seen,
                    [this, buffer] { m_indexedBufferCallback(std::get<0>(this->m_queues).index, buffer); });
        }
    }

    std::tuple<cIPort<T>...> m_ports;
    // Used in groups with a single port only.
    std::function<void(Buffer*)> m_bufferCallback;
    std::function<void(int, Buffer*)> m_indexedBufferCallback;

private:
    template <std::size_t... I> void build(std::index_sequence<I...>, const Name<T>&... i_names)
    {
        (addPort<I>(i_names), ...);
    }

    template <std::size_t I> void addPort(const QString& i_name)
    {
        auto& port = std::get<I>(m_ports);
        auto& queue = std::get<I>(this->m_queues);
        this->addInput(port, queue, std::get<I>(this->m_history), i_name);
        port.setListCallback([this, &queue](const auto& i_buffers) {
            const QMutexLocker lock(&this->m_groupMutex);
            queue.append(i_buffers);
        });
    }
};

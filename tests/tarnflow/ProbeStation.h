#pragma once

#include <functional>
#include <tarnflow/cOPort.h>
#include <tarnflow/cPortGroup.h>
#include <tarnflow/cStation.h>

/** A station with the inputs "a", "b", ... of the types T and the output "out", whose step the test supplies.
 */
template <class... T> class ProbeStation : public cStation {
public:
    explicit ProbeStation(std::function<void(ProbeStation&)> i_step = {})
        : cStation(QStringLiteral("probe")),
          step(std::move(i_step)),
          group(makeGroup(std::make_integer_sequence<int, int(sizeof...(T))>())),
          out(this, QStringLiteral("out"), 50000)
    {
    }

    std::function<void(ProbeStation&)> step;
    cPortGroup<T...> group;
    cOPort<double> out;

private:
    static QString nameOf(int i_place) { return QString(QLatin1Char(char('a' + i_place))); }

    template <int... I> cPortGroup<T...> makeGroup(std::integer_sequence<int, I...>)
    {
        return cPortGroup<T...>(this, &ProbeStation::process, nameOf(I)...);
    }

    void process()
    {
        if (step)
            step(*this);
    }
};

/** A station with one input "a" and the output "out", whose step runs once for each buffer. */
template <class T> class BufferProbeStation : public cStation {
public:
    explicit BufferProbeStation(std::function<void(BufferProbeStation&, cBufferT<T>*)> i_step = {})
        : cStation(QStringLiteral("probe")),
          step(std::move(i_step)),
          group(this, &BufferProbeStation::process, QStringLiteral("a")),
          out(this, QStringLiteral("out"), 50000)
    {
    }

    std::function<void(BufferProbeStation&, cBufferT<T>*)> step;
    cPortGroup<T> group;
    cOPort<double> out;

private:
    void process(cBufferT<T>* i_buffer)
    {
        if (step)
            step(*this, i_buffer);
    }
};

#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <tarnbase/cDataRefObj.h>
#include <tarnflow/cOPort.h>
#include <tarnflow/cPortGroup.h>
#include <tarnflow/cSourceStation.h>
#include <vector>

// Small stations for the tests of graphs, which run on threads of their own.

/** Sends the numbers 1 to `count`, each with itself as stamp. */
class NumberSource : public cSourceStation {
public:
    explicit NumberSource(int i_count = 0, unsigned int i_poolSize = 5)
        : count(i_count),
          out(this, QStringLiteral("out"), i_poolSize)
    {
        m_params.setSubObject(new cDataRefObj<int>(count), QStringLiteral("count"), true);
    }
    void start(StartReasons i_reason) override
    {
        m_next = 1;
        cSourceStation::start(i_reason);
    }

    int count;
    std::function<void(int)> beforeSend; ///< with the number that comes next
    cOPort<double> out;

protected:
    bool produce() override
    {
        if (m_next > count)
            return false;
        const int number = m_next++;
        if (beforeSend)
            beforeSend(number);
        out.send(number, number);
        out.sendFinish(number);
        return m_next <= count;
    }

private:
    int m_next = 1;
};

/** Passes each number on with something added to it. */
class AddStation : public cStation {
public:
    explicit AddStation(unsigned int i_poolSize = 5)
        : group(this, &AddStation::process, QStringLiteral("in")),
          out(this, QStringLiteral("out"), i_poolSize)
    {
        m_params.setSubObject(new cDataRefObj<double>(summand), QStringLiteral("summand"), true);
    }

    double summand = 0;
    std::function<void(double)> beforeSend; ///< with the number that came
    cPortGroup<double> group;
    cOPort<double> out;

private:
    void process(cBufferT<double>* i_buffer)
    {
        if (beforeSend)
            beforeSend(i_buffer->getValue());
        if (out.requestsData())
            out.send(i_buffer->getValue() + summand, i_buffer->getStamp());
    }
};

/** Sends a - b. */
class SubtractStation : public cStation {
public:
    SubtractStation()
        : group(this, &SubtractStation::process, QStringLiteral("a"), QStringLiteral("b")),
          out(this, QStringLiteral("out"), 5)
    {
    }
    cPortGroup<double, double> group;
    cOPort<double> out;

private:
    void process() { out.send(group.getValue<0>() - group.getValue<1>(), group.getStamp()); }
};

/** Takes whole numbers. */
class IntStation : public cStation {
public:
    IntStation()
        : group(this, &IntStation::process, QStringLiteral("in")),
          out(this, QStringLiteral("out"), 5)
    {
    }
    cPortGroup<int> group;
    cOPort<int> out;

private:
    void process(cBufferT<int>* i_buffer) { out.send(i_buffer->getValue(), i_buffer->getStamp()); }
};

/** Keeps what comes. */
template <class T> class Collector : public cStation {
public:
    Collector() : group(this, &Collector::process, QStringLiteral("in")) {}

    std::vector<T> values() const
    {
        const std::lock_guard lock(m_mutex);
        return m_values;
    }
    std::vector<qint64> stamps() const
    {
        const std::lock_guard lock(m_mutex);
        return m_stamps;
    }

    std::function<void(const T&)> onValue; ///< on the station's thread, before the value is kept
    cPortGroup<T> group;

private:
    void process(cBufferT<T>* i_buffer)
    {
        if (onValue)
            onValue(i_buffer->getValue());
        const std::lock_guard lock(m_mutex);
        m_values.push_back(i_buffer->getValue());
        m_stamps.push_back(i_buffer->getStamp().getStamp());
    }

    mutable std::mutex m_mutex; ///< guards what follows
    std::vector<T> m_values;
    std::vector<qint64> m_stamps;
};

/** A door that is closed until somebody opens it. */
class Gate {
public:
    void open()
    {
        const std::lock_guard lock(m_mutex);
        m_open = true;
        m_changed.notify_all();
    }
    /** Waits until it is open; false when nobody opens it for half a minute. */
    bool pass()
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(30), [this] { return m_open; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_open = false;
};

/** Adds a node under a name and gives it back. */
template <class Node, class Graph> Node& addTo(Graph& io_graph, const char* i_name, Node* i_node)
{
    const QString name = QString::fromLatin1(i_name);
    if (!io_graph.addNode(i_node) || !io_graph.renameNode(i_node->getName(), name))
        throw std::logic_error("a node could not be added");
    return *i_node;
}

inline QString operator""_q(const char* i_text, std::size_t i_length)
{
    return QString::fromUtf8(i_text, int(i_length));
}

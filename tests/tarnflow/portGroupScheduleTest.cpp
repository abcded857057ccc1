// Random schedules of everything that can happen to a port group, compared with a plain model after every
// event.
#include "PortGroupModel.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <stdexcept>
#include <support/StationHarness.h>
#include <support/qtPrinters.h>
#include <tarnbase/cError.h>
#include <tarnbase/cTracerManager.h>
#include <tarnflow/SEHException.h>
#include <tarnflow/cPortGroup.h>
#include <tarnflow/cStepScope.h>

namespace {
using Step = PortGroupModel::Step;
using Stamp = PortGroupModel::Stamp;
using Fate = PortGroupModel::Fate;
using Frame = PortGroupModel::Frame;

/** A station whose step writes down what it sees and acts as it was told to. */
class ScheduledStation : public cStation {
public:
    ScheduledStation() : cStation(QStringLiteral("scheduled")), out(this, QStringLiteral("out"), 50000) {}

    virtual cPortGroupBase& getGroup() = 0;
    virtual cIPortQueueBase& getQueue(int i_port) = 0;

    QStringList* log = nullptr;
    std::vector<Step> steps;
    std::size_t calls = 0;
    std::function<void()> duringStep;
    cOPort<double> out;

protected:
    static QString nameOf(int i_port) { return QString(QLatin1Char(char('a' + i_port))); }

    static QString show(cBufferT<int>* i_buffer)
    {
        if (!i_buffer)
            return QStringLiteral(" -");
        const cBufferStamp stamp = i_buffer->getStamp();
        return QStringLiteral(" %1@%2/%3")
            .arg(i_buffer->getValue())
            .arg(stamp.getStamp())
            .arg(stamp.getTime());
    }

    void act(const QString& i_seen)
    {
        *log << QStringLiteral("step %1:%2").arg(getGroup().getStamp().getStamp()).arg(i_seen);
        if (const auto happening = std::exchange(duringStep, {})) {
            const cStepScope::Suspension othersAct;
            happening();
        }
        const Step step = calls < steps.size() ? steps[calls] : Step::Use;
        ++calls;
        switch (step) {
        case Step::Use:
            return;
        case Step::Gate:
            return cStepScope::noteRequest(false);
        case Step::Lose:
            return cStepScope::noteLost();
        case Step::Ignore:
            return cStepScope::noteIgnored();
        case Step::ThrowError:
            throw std::runtime_error("planned");
        case Step::ThrowFault:
            throw SEHException(QStringLiteral("planned"));
        case Step::ThrowUnknown:
            throw 1;
        }
    }
};

template <int... I> class SetStation : public ScheduledStation {
public:
    cPortGroupBase& getGroup() override { return m_group; }
    cIPortQueueBase& getQueue(int i_port) override
    {
        cIPortQueueBase* queues[] = {&m_group.template getQueue<I>()...};
        return *queues[i_port];
    }

private:
    template <int> using Int = int;
    void process() { act((show(m_group.template getBuffer<I>()) + ...)); }
    cPortGroup<Int<I>...> m_group {this, &SetStation::process, nameOf(I)...};
};

class BufferStation : public ScheduledStation {
public:
    cPortGroupBase& getGroup() override { return m_group; }
    cIPortQueueBase& getQueue(int) override { return m_group.getQueue<0>(); }

private:
    void process(cBufferT<int>* i_buffer) { act(show(i_buffer)); }
    cPortGroup<int> m_group {this, &BufferStation::process, nameOf(0)};
};

ScheduledStation* makeStation(int i_ports, bool i_perBuffer)
{
    if (i_perBuffer)
        return new BufferStation;
    switch (i_ports) {
    case 1:
        return new SetStation<0>;
    case 2:
        return new SetStation<0, 1>;
    case 3:
        return new SetStation<0, 1, 2>;
    default:
        return new SetStation<0, 1, 2, 3>;
    }
}

/** One station and its model, driven by one sequence of random numbers. */
class Schedule {
public:
    explicit Schedule(unsigned i_seed)
        : m_random(i_seed),
          m_ports(1 + pick(4)),
          m_perBuffer(m_ports == 1 && chance(60)),
          m_model(m_ports, m_perBuffer),
          m_station(makeStation(m_ports, m_perBuffer)),
          m_harness(m_station)
    {
        m_station->log = &m_log;
        m_harness.onFinish = [this](const StationHarness::Finish& i_notice) {
            m_log << QStringLiteral("finish %1%2")
                         .arg(i_notice.stamp)
                         .arg(QLatin1String(i_notice.idle ? " idle" : ""));
        };
        QObject::connect(
            &m_station->getGroup(), &cPortGroupBase::exceptionRaised, &m_station->getGroup(),
            [this](
                const cError& i_error) { m_log << QStringLiteral("error %1").arg(int(i_error.getLevel())); },
            Qt::DirectConnection);
        m_listener = cTracerManager::instance().addListener(
            [this](const cTracerManager::Info& i_info) { noteDrop(i_info.text); });
        for (int port = 0; port < m_ports; ++port)
            configure(port);
    }

    ~Schedule()
    {
        cTracerManager::instance().removeListener(m_listener);
        for (const auto& [id, buffer] : m_held)
            buffer->releaseAndUnrefBufferAtPort();
    }

    /** False at the first difference. */
    bool run()
    {
        const int events = 20 + pick(100);
        for (int i = 0; i < events; ++i) {
            happen();
            if (!m_failure.isEmpty() || !compare())
                return false;
        }
        while (runJob())
            if (!compare())
                return false;
        m_script << QStringLiteral("reset at the end");
        m_station->getGroup().reset();
        m_model.reset();
        return compare();
    }

    QString describe() const
    {
        return QStringLiteral("%1 ports%2\n%3\n%4")
            .arg(m_ports)
            .arg(QLatin1String(m_perBuffer ? ", per buffer" : ""), m_script.join(QLatin1Char('\n')),
                m_failure);
    }

private:
    struct Delivery {
        int port = 0;
        bool finishes = false;
        Stamp stamp;
        bool idle = false;
        std::vector<Frame> frames;
    };

    int pick(int i_count) { return int(m_random() % unsigned(i_count)); }
    bool chance(int i_percent) { return pick(100) < i_percent; }
    int pickPort() { return pick(m_ports); }
    PortGroupModel::Queue& modelOf(int i_port) { return m_model.queues[std::size_t(i_port)]; }
    const char* nameOf(int i_port) const
    {
        static const char* const names[] = {"a", "b", "c", "d"};
        return names[i_port];
    }

    void configure(int i_port)
    {
        PortGroupModel::Queue& model = modelOf(i_port);
        model.required = chance(65);
        model.master = chance(8);
        model.delay = chance(70) ? 0 : unsigned(pick(4));
        model.reportDrops = chance(90);
        cIPortQueueBase& real = m_station->getQueue(i_port);
        real.required = model.required;
        real.master = model.master;
        real.delay = model.delay;
        real.reportDrops = model.reportDrops;
        m_senders.push_back(dynamic_cast<cOPort<int>*>(m_harness.sender(nameOf(i_port))));
        m_portOfSender.push_back(i_port);
        m_linked.push_back(true);
        if (chance(20)) {
            m_senders.push_back(dynamic_cast<cOPort<int>*>(m_harness.addSender(nameOf(i_port))));
            m_portOfSender.push_back(i_port);
            m_linked.push_back(true);
            ++model.senders;
        }
        m_script << QStringLiteral("input %1: required %2 master %3 delay %4 drops %5 senders %6")
                        .arg(QLatin1String(nameOf(i_port)))
                        .arg(model.required)
                        .arg(model.master)
                        .arg(model.delay)
                        .arg(model.reportDrops)
                        .arg(model.senders);
        if (chance(model.required ? 3 : 50))
            toggleLink(int(m_senders.size()) - 1);
    }

    void noteDrop(const QString& i_line)
    {
        static const QString before = QStringLiteral("scheduled has dropped data (");
        static const QString between = QStringLiteral(") got from station: ");
        if (!i_line.startsWith(before))
            return;
        const QString stamp = i_line.mid(before.size()).section(between, 0, 0);
        const QString path = i_line.section(between, 1).trimmed();
        for (std::size_t i = 0; i < m_senders.size(); ++i)
            if (m_senders[i]->getPortPath() == path)
                m_log << QStringLiteral("drop at %1 from sender %2").arg(stamp).arg(i);
    }

    // --- events ---

    void happen()
    {
        const int what = pick(100);
        if (what < 35)
            deliver(makeDelivery(false), QString());
        else if (what < 65)
            deliver(makeDelivery(true), QString());
        else if (what < 88)
            runJob();
        else if (what < 89)
            removeSender();
        else if (what < 90)
            reset();
        else if (what < 92)
            toggleMode();
        else if (what < 94)
            changeDelay();
        else if (what < 96)
            toggleLink(pick(int(m_senders.size())));
        else if (what < 98)
            hold();
        else
            letGo();
    }

    Stamp pickStamp(int i_port)
    {
        qint64& clock = m_clocks[std::size_t(i_port)];
        if (chance(2))
            return {};
        const qint64 time = pick(1000);
        if (chance(15))
            return {clock + pick(9) - 6, time}; // late, early or doubled
        if (chance(70))
            clock += 1 + (chance(10) ? pick(5) : 0);
        return {clock, time};
    }

    Delivery makeDelivery(bool i_finishes)
    {
        Delivery delivery;
        delivery.port = pickPort();
        delivery.finishes = i_finishes;
        if (i_finishes) {
            delivery.stamp = chance(70) ? Stamp {m_clocks[std::size_t(delivery.port)], pick(1000)}
                                        : pickStamp(delivery.port);
            delivery.idle = chance(8);
            if (chance(2))
                delivery.stamp = Stamp();
            return delivery;
        }
        std::vector<int> senders;
        for (std::size_t i = 0; i < m_senders.size(); ++i)
            if (m_portOfSender[i] == delivery.port)
                senders.push_back(int(i));
        for (int count = chance(80) ? 1 : 2 + pick(2); count > 0; --count) {
            Frame frame;
            frame.id = ++m_lastId;
            frame.port = delivery.port;
            frame.sender = senders[std::size_t(pick(int(senders.size())))];
            frame.stamp = pickStamp(delivery.port);
            delivery.frames.push_back(frame);
        }
        return delivery;
    }

    void write(const Delivery& i_delivery, const QString& i_indent)
    {
        QString line = i_indent + QLatin1String(nameOf(i_delivery.port));
        if (i_delivery.finishes)
            line += QStringLiteral(" finish %1%2")
                        .arg(i_delivery.stamp.value)
                        .arg(QLatin1String(i_delivery.idle ? " idle" : ""));
        for (const Frame& frame : i_delivery.frames)
            line += QStringLiteral(" frame %1@%2 from %3")
                        .arg(frame.id)
                        .arg(frame.stamp.value)
                        .arg(frame.sender);
        m_script << line;
    }

    void deliver(const Delivery& i_delivery, const QString& i_indent)
    {
        write(i_delivery, i_indent);
        deliverToModel(i_delivery);
        deliverToStation(i_delivery);
    }

    void deliverToModel(const Delivery& i_delivery)
    {
        if (i_delivery.finishes)
            m_model.finish(i_delivery.port, i_delivery.stamp, i_delivery.idle);
        else
            m_model.data(i_delivery.port, i_delivery.frames);
    }

    void deliverToStation(const Delivery& i_delivery)
    {
        cIPortBase* port = m_harness.inport(nameOf(i_delivery.port));
        if (i_delivery.finishes) {
            const cBufferStamp stamp(i_delivery.stamp.value, i_delivery.stamp.time);
            const std::size_t first
                = std::size_t(std::find(m_portOfSender.begin(), m_portOfSender.end(), i_delivery.port)
                    - m_portOfSender.begin());
            if (m_linked[first])
                m_senders[first]->sendFinish(stamp, i_delivery.idle);
            else
                port->m_finishCallback(stamp, i_delivery.idle);
            return;
        }
        QList<cBuffer*> buffers;
        for (const Frame& frame : i_delivery.frames) {
            cBufferT<int>* buffer = m_senders[std::size_t(frame.sender)]->getFreeBuffer(false);
            buffer->setValue(frame.id);
            buffer->setStamp({frame.stamp.value, frame.stamp.time});
            m_buffers[frame.id] = buffer;
            buffers.append(buffer);
        }
        const int sender = i_delivery.frames.front().sender;
        if (buffers.size() == 1 && m_linked[std::size_t(sender)])
            m_senders[std::size_t(sender)]->sendBuffer(buffers.first());
        else
            port->receiveBuffer(buffers, nullptr, false);
    }

    bool runJob()
    {
        std::vector<Step> steps;
        for (int i = 0; i < 4; ++i) {
            const int what = pick(100);
            steps.push_back(what < 70 ? Step::Use
                    : what < 76       ? Step::Gate
                    : what < 82       ? Step::Lose
                    : what < 88       ? Step::Ignore
                    : what < 95       ? Step::ThrowError
                    : what < 99       ? Step::ThrowFault
                                      : Step::ThrowUnknown);
        }
        std::vector<Delivery> meanwhile;
        if (chance(30))
            for (int count = 1 + pick(4); count > 0; --count)
                meanwhile.push_back(makeDelivery(chance(50)));
        QString line = QStringLiteral("run");
        for (Step step : steps)
            line += QStringLiteral(" %1").arg(int(step));
        m_script << line;
        for (const Delivery& delivery : meanwhile)
            write(delivery, QStringLiteral("    during it: "));

        // A delivery that no step came to see is not made at all.
        m_model.duringStep = [&] {
            for (const Delivery& delivery : meanwhile)
                deliverToModel(delivery);
        };
        m_station->duringStep = [&] {
            for (const Delivery& delivery : meanwhile)
                deliverToStation(delivery);
        };
        m_station->steps = steps;
        m_station->calls = 0;
        const bool modelRan = m_model.runJob(steps);
        const bool stationRan = m_harness.runStep();
        m_model.duringStep = {};
        m_station->duringStep = {};
        if (modelRan != stationRan)
            m_failure = QStringLiteral("a job ran in one of both only");
        return modelRan && stationRan;
    }

    void removeSender()
    {
        const int sender = chance(30) ? -1 : pick(int(m_senders.size()));
        m_script << QStringLiteral("remove sender %1").arg(sender);
        m_model.removeSender(sender);
        m_station->getGroup().removeSender(sender < 0 ? nullptr : m_senders[std::size_t(sender)]);
    }

    void reset()
    {
        m_script << QStringLiteral("reset");
        m_model.reset();
        m_station->getGroup().reset();
    }

    void toggleMode()
    {
        m_model.discards = !m_model.discards;
        m_script << QStringLiteral("discard %1").arg(m_model.discards);
        m_station->getGroup().setMode(m_model.discards ? cPortGroupBase::Discard : cPortGroupBase::Match);
    }

    void changeDelay()
    {
        const int port = pickPort();
        const unsigned delay = unsigned(pick(3));
        m_script << QStringLiteral("%1 delay %2").arg(QLatin1String(nameOf(port))).arg(delay);
        modelOf(port).delay = delay;
        m_harness.inport(nameOf(port))->getParams().getSubObject(QStringLiteral("delay"))->setValue(delay);
    }

    void toggleLink(int i_sender)
    {
        const auto sender = std::size_t(i_sender);
        const int port = m_portOfSender[sender];
        m_linked[sender] = !m_linked[sender];
        m_script << QStringLiteral("sender %1 linked %2").arg(i_sender).arg(m_linked[sender]);
        cIPortBase* input = m_harness.inport(nameOf(port));
        if (m_linked[sender]) {
            ++modelOf(port).senders;
            m_harness.graph().link(m_senders[sender], input);
        } else {
            --modelOf(port).senders;
            m_harness.graph().unlink(m_senders[sender], input);
        }
    }

    /** Somebody else takes a reference of a buffer that the group holds. */
    void hold()
    {
        std::vector<Frame*> candidates;
        for (auto& [id, frame] : m_model.frames)
            if (frame.inGroup && !frame.isPrivate && !frame.heldOutside)
                candidates.push_back(&frame);
        if (candidates.empty())
            return;
        Frame& frame = *candidates[std::size_t(pick(int(candidates.size())))];
        m_script << QStringLiteral("hold %1").arg(frame.id);
        frame.heldOutside = true;
        cBufferT<int>* buffer = m_buffers[frame.id];
        buffer->ref();
        m_held[frame.id] = buffer;
        m_heldStamps[frame.id] = buffer->getStamp();
    }

    void letGo()
    {
        if (m_held.empty())
            return;
        const auto held = std::next(m_held.begin(), pick(int(m_held.size())));
        m_script << QStringLiteral("let go %1").arg(held->first);
        m_model.frames[held->first].heldOutside = false;
        held->second->releaseAndUnrefBufferAtPort();
        m_held.erase(held);
    }

    // --- comparison ---

    template <class A, class B> bool same(const QString& i_what, const A& i_model, const B& i_real)
    {
        if (i_model == i_real)
            return true;
        m_failure = QStringLiteral("%1: expected %2, found %3")
                        .arg(i_what, QString::fromStdString(testing::PrintToString(i_model)),
                            QString::fromStdString(testing::PrintToString(i_real)));
        return false;
    }

    bool compare()
    {
        const QStringList expected = std::exchange(m_model.log, {});
        const QStringList found = std::exchange(m_log, {});
        bool ok = same(QStringLiteral("what happened"), expected, found)
            && same(QStringLiteral("current stamp"), m_model.current.value,
                m_station->getGroup().getStamp().getStamp())
            && same(QStringLiteral("jobs"), m_model.jobCount(), m_station->getQueuedJobCount())
            && same(QStringLiteral("dead"), m_model.dead, m_station->isDead());
        for (int port = 0; ok && port < m_ports; ++port)
            ok = compareQueue(port) && compareFates(port);
        for (std::size_t sender = 0; ok && sender < m_senders.size(); ++sender)
            ok = same(QStringLiteral("buffers of sender %1 with holders").arg(sender),
                m_model.heldOf(int(sender)), m_senders[sender]->getHeldCount());
        for (const auto& [id, buffer] : m_held)
            ok = ok && same(QStringLiteral("held value"), id, buffer->getValue())
                && same(
                    QStringLiteral("held stamp"), m_heldStamps[id].getStamp(), buffer->getStamp().getStamp())
                && same(
                    QStringLiteral("held time"), m_heldStamps[id].getTime(), buffer->getStamp().getTime());
        return ok;
    }

    bool compareQueue(int i_port)
    {
        const PortGroupModel::Queue& model = modelOf(i_port);
        cPortGroupBase& group = m_station->getGroup();
        cIPortBase* port = m_harness.inport(nameOf(i_port));
        const QString at = QStringLiteral(" of %1").arg(QLatin1String(nameOf(i_port)));
        QStringList expected;
        for (const Frame* frame : model.data)
            expected << QStringLiteral("%1@%2").arg(frame->id).arg(frame->stamp.value);
        QStringList found;
        for (const auto& [stamp, text] : group.getQueueContents(port))
            found << QStringLiteral("%1@%2").arg(text).arg(stamp.getStamp());
        const auto firstOf = [](const auto& i_list, const auto& i_value) {
            return i_list.empty() ? PortGroupModel::invalid : i_value(i_list.front());
        };
        const auto lastOf = [](const auto& i_list, const auto& i_value) {
            return i_list.empty() ? PortGroupModel::invalid : i_value(i_list.back());
        };
        const auto ofFrame = [](const Frame* i_frame) { return i_frame->stamp.value; };
        const auto ofStamp = [](const Stamp& i_stamp) { return i_stamp.value; };
        QList<qint64> expectedStamps;
        for (const Stamp& stamp : model.stamps)
            expectedStamps << stamp.value << stamp.time;
        QList<qint64> foundStamps;
        const cStampList& stamps = m_station->getQueue(i_port).stamps;
        for (int i = 0; i < stamps.getCount(); ++i)
            foundStamps << stamps[i].getStamp() << stamps[i].getTime();
        return same(QStringLiteral("data") + at, expected, found)
            && same(QStringLiteral("data count") + at, int(model.data.size()), group.getDataCount(port))
            && same(QStringLiteral("stamps") + at, expectedStamps, foundStamps)
            && same(QStringLiteral("stamp count") + at, int(model.stamps.size()), group.getStampCount(port))
            && same(
                QStringLiteral("oldest data") + at, firstOf(model.data, ofFrame), group.getOldestData(port))
            && same(
                QStringLiteral("newest data") + at, lastOf(model.data, ofFrame), group.getNewestData(port))
            && same(QStringLiteral("oldest stamp") + at, firstOf(model.stamps, ofStamp),
                group.getOldestStamp(port))
            && same(QStringLiteral("newest stamp") + at, lastOf(model.stamps, ofStamp),
                group.getNewestStamp(port))
            && same(QStringLiteral("idle") + at, model.idle, m_station->getQueue(i_port).senderIdle);
    }

    bool compareFates(int i_port)
    {
        const cFates fates = m_harness.fates(nameOf(i_port));
        const std::pair<Fate, quint64> counts[] = {{Fate::Waiting, fates.waiting}, {Fate::Used, fates.used},
            {Fate::Unseen, fates.unseen}, {Fate::Incomplete, fates.incomplete}, {Fate::Gated, fates.gated},
            {Fate::Lost, fates.lost}, {Fate::Failed, fates.failed}, {Fate::Ignored, fates.ignored},
            {Fate::Discarded, fates.discarded}};
        const QString at = QStringLiteral(" of %1").arg(QLatin1String(nameOf(i_port)));
        for (const auto& [fate, count] : counts)
            if (!same(QStringLiteral("fate %1").arg(int(fate)) + at, quint64(m_model.count(i_port, fate)),
                    count))
                return false;
        return same(QStringLiteral("arrived") + at, quint64(modelOf(i_port).arrived), fates.arrived)
            && same(QStringLiteral("sum of the fates") + at, fates.arrived, fates.getSum());
    }

    std::mt19937 m_random;
    const int m_ports;
    const bool m_perBuffer;
    PortGroupModel m_model;
    ScheduledStation* const m_station;
    StationHarness m_harness;
    std::vector<cOPort<int>*> m_senders;
    std::vector<int> m_portOfSender;
    std::vector<bool> m_linked;
    qint64 m_clocks[4] = {100, 100, 100, 100};
    int m_lastId = 0;
    std::map<int, cBufferT<int>*> m_buffers; ///< valid while the group or m_held holds them
    std::map<int, cBufferT<int>*> m_held;
    std::map<int, cBufferStamp> m_heldStamps;
    int m_listener = 0;
    QStringList m_log;
    QStringList m_script;
    QString m_failure;
};

void runSeed(unsigned i_seed)
{
    Schedule schedule(i_seed);
    if (!schedule.run())
        FAIL() << "seed " << i_seed << " (TARN_SCHEDULE_SEED=" << i_seed << " runs it alone)\n"
               << schedule.describe().toStdString();
}
} // namespace

TEST(portGroupScheduleTest, EveryScheduleGoesAsTheModelSays)
{
    if (const char* seed = std::getenv("TARN_SCHEDULE_SEED"))
        return runSeed(unsigned(std::atoi(seed)));
    for (unsigned seed = 1; seed <= 4000; ++seed)
        if (runSeed(seed); HasFatalFailure())
            return;
}

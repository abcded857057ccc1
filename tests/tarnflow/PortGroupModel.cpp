#include "PortGroupModel.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace {
using Stamp = PortGroupModel::Stamp;

Stamp sum(Stamp a, Stamp b)
{
    return {qint64(quint64(a.value) + quint64(b.value)), qint64(quint64(a.time) + quint64(b.time))};
}

Stamp difference(Stamp a, Stamp b)
{
    return {qint64(quint64(a.value) - quint64(b.value)), qint64(quint64(a.time) - quint64(b.time))};
}
} // namespace

PortGroupModel::PortGroupModel(int i_ports, bool i_perBuffer)
    : queues(std::size_t(i_ports)),
      m_perBuffer(i_perBuffer)
{
}

void PortGroupModel::data(int i_port, const std::vector<Frame>& i_frames)
{
    Queue& queue = queues[std::size_t(i_port)];
    for (const Frame& frame : i_frames) {
        Frame& kept = frames[frame.id];
        kept = frame;
        queue.data.push_back(&kept);
        ++queue.arrived;
    }
    queue.idle = false;
}

void PortGroupModel::finish(int i_port, Stamp i_stamp, bool i_idle)
{
    Queue& queue = queues[std::size_t(i_port)];
    std::vector<Stamp>& stamps = queue.stamps;
    if (stamps.empty() || stamps.back().value <= i_stamp.value) {
        stamps.push_back(i_stamp);
    } else {
        for (std::size_t index = stamps.size() - 1;; --index) {
            if (index == 0 || stamps[index].value <= i_stamp.value) {
                stamps.insert(stamps.begin() + std::ptrdiff_t(index), i_stamp);
                break;
            }
        }
    }
    queue.idle = i_idle;
    search();
}

void PortGroupModel::search()
{
    const bool discarding = discards;
    if (!m_ready && !discarding)
        return;
    for (;;) {
        bool marker = false;
        for (const Queue& queue : queues)
            for (const Stamp& stamp : queue.stamps)
                marker = marker || stamp.value == invalid;

        Stamp candidate;
        if (!marker) {
            const auto master = std::find_if(queues.begin(), queues.end(),
                [](const Queue& i_queue) { return i_queue.master && !i_queue.stamps.empty(); });
            if (master != queues.end()) {
                candidate = master->stamps.front();
            } else {
                for (const Queue& queue : queues) {
                    if (!queue.stamps.empty()) {
                        if (candidate.value < queue.stamps.front().value)
                            candidate = queue.stamps.front();
                    } else if (queue.senders > 0 && !queue.idle) {
                        return;
                    }
                }
                // All inputs are idle, or those that are not have no sender: there is nothing to match.
                if (candidate.value == invalid)
                    return;
            }
            for (const Queue& queue : queues) {
                const bool optionalAlone = !queue.required && queue.senders == 0;
                const bool announced = !queue.stamps.empty() && queue.stamps.back().value >= candidate.value;
                if (!queue.idle && !optionalAlone && !announced)
                    return;
            }
        }

        bool complete = true;
        for (Queue& queue : queues) {
            while (!queue.stamps.empty() && queue.stamps.front().value <= candidate.value)
                queue.stamps.erase(queue.stamps.begin());
            // A late stamp can stand in front of a marker; the marker is used up all the same.
            if (marker)
                std::erase_if(queue.stamps, [](const Stamp& i_stamp) { return i_stamp.value == invalid; });
            bool found = false;
            for (const Frame* frame : queue.data)
                found = found || frame->stamp.value <= candidate.value;
            complete = complete && (found || !queue.required);
        }
        if (!discarding) {
            m_previous = current;
            current = candidate;
            if (complete) {
                dispatch();
                return;
            }
        }
        if (marker) {
            // A marker alone is told to nobody; but where nothing more comes, those behind need not wait.
            if (!discarding && isExhausted())
                log << QStringLiteral("finish %1 idle").arg(m_newestAnnounced);
            continue;
        }
        drop(candidate);
        if (!discarding)
            sendFinish();
    }
}

void PortGroupModel::drop(Stamp i_candidate)
{
    for (Queue& queue : queues) {
        for (Frame* frame : std::vector<Frame*>(queue.data)) {
            if (frame->stamp.value > i_candidate.value)
                continue;
            queue.data.erase(std::find(queue.data.begin(), queue.data.end(), frame));
            frame->inGroup = false;
            setFate(*frame, discards ? Fate::Discarded : Fate::Incomplete);
            if (queue.reportDrops)
                log << QStringLiteral("drop at %1 from sender %2").arg(i_candidate.value).arg(frame->sender);
        }
    }
}

void PortGroupModel::dispatch()
{
    const Stamp moved = difference(current, m_previous);
    for (Queue& queue : queues) {
        if (m_previous.value != invalid) {
            for (std::vector<Frame*>& entry : queue.history) {
                for (Frame* frame : entry) {
                    frame->stamp = sum(frame->stamp, moved);
                    if (frame->heldOutside && (moved.value != 0 || moved.time != 0))
                        frame->isPrivate = true;
                }
            }
        }
        std::vector<Frame*> entry;
        if (queue.senders == 1) {
            while (!queue.data.empty() && queue.data.front()->stamp.value <= current.value) {
                entry.push_back(queue.data.front());
                queue.data.erase(queue.data.begin());
            }
        } else {
            for (;;) {
                Frame* smallest = nullptr;
                for (Frame* frame : queue.data)
                    if (frame->stamp.value <= current.value
                        && (!smallest || frame->stamp.value < smallest->stamp.value))
                        smallest = frame;
                if (!smallest)
                    break;
                entry.push_back(smallest);
                queue.data.erase(std::find(queue.data.begin(), queue.data.end(), smallest));
            }
        }
        queue.history.push_back(entry);
    }
    m_ready = false;
    queueJob(current.value, true);
}

void PortGroupModel::queueJob(qint64 i_order, bool i_isMatch)
{
    const auto place
        = std::find_if(m_jobs.begin(), m_jobs.end(), [&](const Job& i_job) { return i_job.order > i_order; });
    m_jobs.insert(place, {i_order, m_generation, i_isMatch});
}

bool PortGroupModel::isExhausted() const
{
    bool anyIdle = false;
    bool exhausted = true;
    for (const Queue& queue : queues) {
        anyIdle = anyIdle || queue.idle;
        exhausted
            = exhausted && queue.data.empty() && queue.stamps.empty() && (queue.idle || queue.senders == 0);
    }
    return anyIdle && exhausted;
}

void PortGroupModel::sendFinish()
{
    log << QStringLiteral("finish %1%2").arg(current.value).arg(QLatin1String(isExhausted() ? " idle" : ""));
    if (current.value != invalid)
        m_newestAnnounced = current.value;
}

bool PortGroupModel::runJob(const std::vector<Step>& i_steps)
{
    if (m_jobs.empty())
        return false;
    const Job job = m_jobs.front();
    m_jobs.erase(m_jobs.begin());
    if (!job.isMatch)
        releaseSetAside();
    else if (job.generation == m_generation)
        runMatch(i_steps);
    return true;
}

void PortGroupModel::runMatch(const std::vector<Step>& i_steps)
{
    const auto fateOf = [](Step i_step) {
        switch (i_step) {
        case Step::Use:
            return Fate::Used;
        case Step::Gate:
            return Fate::Gated;
        case Step::Lose:
            return Fate::Lost;
        case Step::Ignore:
            return Fate::Ignored;
        default:
            return Fate::Failed;
        }
    };
    const auto firstEntry = [](Queue& i_queue) {
        return i_queue.history.empty() ? std::vector<Frame*>() : i_queue.history.front();
    };
    const auto show = [](const Frame* i_frame) {
        return i_frame
            ? QStringLiteral(" %1@%2/%3").arg(i_frame->id).arg(i_frame->stamp.value).arg(i_frame->stamp.time)
            : QStringLiteral(" -");
    };

    if (!dead) {
        // The calls of the step: for each the frames that it sees.
        std::vector<std::vector<Frame*>> calls;
        if (m_perBuffer) {
            for (Frame* frame : firstEntry(queues.front()))
                calls.push_back({frame});
        } else {
            calls.emplace_back();
            for (Queue& queue : queues) {
                const std::vector<Frame*> entry = firstEntry(queue);
                calls.back().push_back(entry.empty() ? nullptr : entry.front());
            }
        }
        for (std::size_t i = 0; i < calls.size(); ++i) {
            const Step step = i < i_steps.size() ? i_steps[i] : Step::Use;
            QString line = QStringLiteral("step %1:").arg(current.value);
            for (Frame* frame : calls[i]) {
                line += show(frame);
                if (frame && frame->fate == Fate::Waiting)
                    setFate(*frame, fateOf(step));
            }
            log << line;
            if (const auto happening = std::exchange(duringStep, {}))
                happening();
            if (step >= Step::ThrowError) {
                log << QStringLiteral("error %1").arg(int(step) - int(Step::ThrowError));
                dead = dead || step == Step::ThrowUnknown;
                break;
            }
        }
        for (Queue& queue : queues)
            for (Frame* frame : firstEntry(queue))
                if (frame->fate == Fate::Waiting)
                    setFate(*frame, Fate::Unseen);
    } else {
        for (Queue& queue : queues)
            for (Frame* frame : firstEntry(queue))
                if (frame->fate == Fate::Waiting)
                    setFate(*frame, Fate::Discarded);
    }
    sendFinish();
    for (Queue& queue : queues) {
        if (queue.history.size() > queue.delay) {
            for (Frame* frame : queue.history.front())
                frame->inGroup = false;
            queue.history.erase(queue.history.begin());
        }
    }
    m_ready = true;
    search();
}

void PortGroupModel::removeSender(int i_sender)
{
    const bool noneSetAside = m_setAside.empty();
    for (Queue& queue : queues) {
        std::vector<Frame*> all = queue.data;
        for (const std::vector<Frame*>& entry : queue.history)
            all.insert(all.end(), entry.begin(), entry.end());
        for (Frame* frame : all) {
            if (frame->fate == Fate::Waiting)
                setFate(*frame, Fate::Discarded);
            if (i_sender < 0 || frame->sender == i_sender)
                frame->inGroup = false;
            else
                m_setAside.push_back(frame);
        }
        queue.data.clear();
        queue.history.clear();
        queue.stamps.clear();
        queue.idle = false;
    }
    // A sender that is gone gets what had been set aside of it before.
    std::erase_if(m_setAside, [&](Frame* i_frame) {
        if (i_sender >= 0 && i_frame->sender != i_sender)
            return false;
        i_frame->inGroup = false;
        return true;
    });
    if (noneSetAside && !m_setAside.empty())
        queueJob(invalid, false);
}

void PortGroupModel::reset()
{
    removeSender(-1);
    current = m_previous = Stamp();
    m_ready = true;
    ++m_generation;
}

void PortGroupModel::releaseSetAside()
{
    for (Frame* frame : m_setAside)
        frame->inGroup = false;
    m_setAside.clear();
}

void PortGroupModel::setFate(Frame& io_frame, Fate i_fate)
{
    if (io_frame.fate != Fate::Waiting)
        throw std::logic_error("a frame has one fate");
    io_frame.fate = i_fate;
}

int PortGroupModel::count(int i_port, Fate i_fate) const
{
    return int(std::count_if(frames.begin(), frames.end(),
        [&](const auto& i_entry) { return i_entry.second.port == i_port && i_entry.second.fate == i_fate; }));
}

int PortGroupModel::heldOf(int i_sender) const
{
    return int(std::count_if(frames.begin(), frames.end(), [&](const auto& i_entry) {
        const Frame& frame = i_entry.second;
        return frame.sender == i_sender && (frame.heldOutside || (frame.inGroup && !frame.isPrivate));
    }));
}

#include <tarnflow/cIPortQueueBase.h>

#include <algorithm>
#include <tarnbase/cDataRefObj.h>
#include <tarnbase/cTracer.h>
#include <tarnflow/cBuffer.h>
#include <tarnflow/cDfpNode.h>
#include <tarnflow/cIPortBase.h>
#include <tarnflow/cOPortBase.h>

void cIPortQueueBase::bind(cIPortBase* i_port, const QString& i_name)
{
    name = i_name;
    port = i_port;
    port->getParams().setSubObject(new cDataRefObj<unsigned int>(delay), QStringLiteral("delay"), true);
    port->getDefaultParams() = port->getParams();
}

void cIPortQueueBase::noteArrived(int i_count)
{
    fates.arrived += quint64(i_count);
    senderIdle = false;
    updateDataEnds();
}

void cIPortQueueBase::noteFinished(const cBufferStamp& i_stamp, bool i_idle)
{
    stamps.insert(i_stamp);
    updateStampEnds();
    senderIdle = i_idle;
}

bool cIPortQueueBase::isFinishedUpTo(const cBufferStamp& i_stamp) const
{
    return senderIdle || (!required && !port->receivesData())
        || (!stamps.isEmpty() && stamps.getLast() >= i_stamp);
}

bool cIPortQueueBase::suffices(const cBufferStamp& i_stamp) const
{
    return !required || std::any_of(data.cbegin(), data.cend(), [&](const cBuffer* i_buffer) {
        return i_buffer->getStamp() <= i_stamp;
    });
}

bool cIPortQueueBase::isExhausted() const
{
    return data.isEmpty() && stamps.isEmpty() && (senderIdle || !port->receivesData());
}

void cIPortQueueBase::useUpStamps(const cBufferStamp& i_stamp)
{
    stamps.removeUpTo(i_stamp);
    if (!i_stamp.isValid())
        stamps.removeMarkers();
    updateStampEnds();
}

void cIPortQueueBase::takeUpTo(const cBufferStamp& i_stamp, std::vector<cBuffer*>& io_taken)
{
    const auto isDue = [&](const cBuffer* i_buffer) { return i_buffer->getStamp() <= i_stamp; };
    if (port->getEnabledChannelCount() == 1) {
        const auto end = std::find_if_not(data.begin(), data.end(), isDue);
        io_taken.assign(data.begin(), end);
        data.erase(data.begin(), end);
    } else {
        const auto isEarlier
            = [](const cBuffer* i_a, const cBuffer* i_b) { return i_a->getStamp() < i_b->getStamp(); };
        std::copy_if(data.begin(), data.end(), std::back_inserter(io_taken), isDue);
        data.erase(std::remove_if(data.begin(), data.end(), isDue), data.end());
        if (!std::is_sorted(io_taken.begin(), io_taken.end(), isEarlier))
            std::stable_sort(io_taken.begin(), io_taken.end(), isEarlier);
    }
    updateDataEnds();
}

void cIPortQueueBase::dropUpTo(const cBufferStamp& i_stamp, quint64 cFates::*i_fate)
{
    const auto drop = [&](cBuffer* i_buffer) {
        if (!(i_buffer->getStamp() <= i_stamp))
            return false;
        if (reportDrops)
            reportDrop(*i_buffer, i_stamp);
        if (cOPortBase* const parent = i_buffer->getParentPort())
            parent->releaseAndUnrefBuffer(i_buffer);
        else
            i_buffer->releaseAndUnrefBufferAtPort();
        ++(fates.*i_fate);
        return true;
    };
    data.erase(std::remove_if(data.begin(), data.end(), drop), data.end());
    updateDataEnds();
}

void cIPortQueueBase::forget()
{
    stamps.clear();
    senderIdle = false;
    updateDataEnds();
    updateStampEnds();
}

void cIPortQueueBase::updateDataEnds()
{
    newestData = data.isEmpty() ? cBufferStamp::s_invalid : data.last()->getStamp().getStamp();
    oldestData = data.isEmpty() ? cBufferStamp::s_invalid : data.first()->getStamp().getStamp();
}

void cIPortQueueBase::updateStampEnds()
{
    newestStamp = stamps.isEmpty() ? cBufferStamp::s_invalid : stamps.getLast().getStamp();
    oldestStamp = stamps.isEmpty() ? cBufferStamp::s_invalid : stamps.getFirst().getStamp();
}

void cIPortQueueBase::reportDrop(const cBuffer& i_buffer, const cBufferStamp& i_stamp) const
{
    cOPortBase* const parent = i_buffer.getParentPort();
    cTracer::cerr << port->getNode()->getPathName() << " has dropped data (" << i_stamp.getStamp()
                  << ") got from station: " << (parent ? parent->getPortPath() : QString()) << "\n"
                  << cTracer::end();
}

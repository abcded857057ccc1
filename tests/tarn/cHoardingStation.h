#pragma once

#include <QList>
#include <tarnflow/cStation.h>
#include <tarnimg/imagePortGroups.h>

/** Gives no buffer back until it is stopped. */
class cHoardingStation : public cStation {
public:
    cHoardingStation() : m_group(this, &cHoardingStation::process, QStringLiteral("img")) {}
    ~cHoardingStation() override { stop(); }
    void stop() override
    {
        cStation::stop();
        for (cBuffer* buffer : qAsConst(m_kept))
            buffer->releaseAndUnrefBufferAtPort();
        m_kept.clear();
    }

private:
    void process(cBufferT<cImg>* i_buffer)
    {
        i_buffer->ref();
        m_kept.append(i_buffer);
    }
    QList<cBuffer*> m_kept;
    cPortGroup<cImg> m_group;
};

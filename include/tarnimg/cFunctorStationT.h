#pragma once

#include <QString>
#include <tarnflow/cPortGroup.h>
#include <tarnflow/cStation.h>
#include <tarnflow/cStepScope.h>
#include <tarnimg/cIPortImg.h>
#include <tarnimg/cImg.h>
#include <tarnimg/cOPortImg.h>
#include <tarnimg/imagePortGroups.h>
#include <type_traits>

/**
 * A station that runs a functor: it builds the ports, enters the functor's parameters into its own map, tells
 * the ports what the functor supports, and turns each matched set of inputs into one output.
 *
 * Nothing is computed while nobody wants the output. An invalid result image is not sent, which is no error;
 * a functor's exception goes to the port group, which reports it.
 *
 * This is the form with two inputs. An image result carries none of their attributes.
 */
template <class Functor, class Out, class In1, class In2> class cFunctorStationT : public cStation {
public:
    cFunctorStationT()
        : cFunctorStationT(QStringLiteral("img1"), QStringLiteral("img2"), QStringLiteral("img"), QString())
    {
    }
    cFunctorStationT(const QString& i_in1, const QString& i_in2, const QString& i_out, const QString& i_name)
        : cStation(i_name),
          m_group(this, &cFunctorStationT::process, i_in1, i_in2),
          m_out(this, i_out, defaultPoolSize<Out>)
    {
        m_functor.refreshParams(&m_params);
        if constexpr (std::is_same_v<In1, cImg>)
            m_functor.initSupportedTypes(m_group.template getPort<0>());
        if constexpr (std::is_same_v<In2, cImg>)
            m_functor.initSupportedTypes(m_group.template getPort<1>());
    }

protected:
    virtual void process()
    {
        if (!m_out.requestsData())
            return;
        const In1& first = m_group.template getValue<0>();
        const In2& second = m_group.template getValue<1>();
        const Out result = m_functor(first, second);
        if constexpr (std::is_same_v<Out, cImg>) {
            if (!result.isValid())
                return;
        }
        m_out.send(result, m_group.getStamp());
    }

    cPortGroup<In1, In2> m_group;
    cOPort<Out> m_out;
    Functor m_functor;
};

/**
 * The form with one input, which works buffer by buffer. An image result carries the attributes of its input;
 * an invalid image at the input is passed over when the result is an image, and left to the functor's check
 * otherwise.
 */
template <class Functor, class Out, class In>
class cFunctorStationT<Functor, Out, In, void> : public cStation {
public:
    cFunctorStationT() : cFunctorStationT(QStringLiteral("img"), QStringLiteral("img"), QString()) {}
    cFunctorStationT(const QString& i_in, const QString& i_out, const QString& i_name)
        : cStation(i_name),
          m_group(this, &cFunctorStationT::process, i_in),
          m_out(this, i_out, defaultPoolSize<Out>)
    {
        m_functor.refreshParams(&m_params);
        if constexpr (std::is_same_v<In, cImg>)
            m_functor.initSupportedTypes(m_group.template getPort<0>());
    }

protected:
    virtual void process(cBufferT<In>* i_buffer)
    {
        const In& input = i_buffer->getValue();
        if constexpr (std::is_same_v<Out, cImg>) {
            if (!input.isValid()) {
                cStepScope::noteIgnored();
                return;
            }
        }
        if (!m_out.requestsData())
            return;
        Out result = m_functor(input);
        if constexpr (std::is_same_v<Out, cImg>) {
            if (!result.isValid())
                return;
            result.copyImgAttr(input);
        }
        m_out.send(result, i_buffer->getStamp());
    }

    cPortGroup<In> m_group;
    cOPort<Out> m_out;
    Functor m_functor;
};

/** The form that gives a station nothing but its functor; the derived class declares its ports and its
 * process step. */
template <class Functor> class cFunctorStationT<Functor, void, void, void> : public cStation {
public:
    explicit cFunctorStationT(const QString& i_name = QString()) : cStation(i_name)
    {
        m_functor.refreshParams(&m_params);
    }

protected:
    Functor m_functor;
};

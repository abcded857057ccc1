#pragma once

#include <tarnimg/cFunctorStationT.h>
#include <utility>

/**
 * A station with an image input "img", an image output "img", and optional inputs for values that stand in
 * for parameters of its functor: the value that came last replaces the parameter, and is what the parameter
 * shows.
 *
 *     class cScaleStation : public cValueStationT<cScaleFunctor, double> {
 *         cScaleStation() : cValueStationT({"value", [](Functor& f, const double& v) { f.setFactor(v); }}) {}
 *     };
 *
 * A value is taken while a sender is linked with its input. While none is linked, the parameter counts and
 * images do not wait. The result carries the attributes of the image and the stamp of the match.
 */
template <class FunctorType, class... Values>
class cValueStationT : public cFunctorStationT<FunctorType, void, void, void> {
public:
    using Functor = FunctorType;

    /** A value input: its name, and what a value does to the functor. */
    template <class T> struct Input {
        const char* name;
        void (*take)(Functor& io_functor, const T& i_value);
    };

    explicit cValueStationT(const Input<Values>&... i_inputs)
        : m_group(
            this, &cValueStationT::process, QStringLiteral("img"), QString::fromLatin1(i_inputs.name)...),
          m_out(this, QStringLiteral("img"), defaultPoolSize<cImg>),
          m_take(i_inputs.take...)
    {
        this->m_functor.initSupportedTypes(m_group.template getPort<0>());
        makeOptional(Indices());
    }

protected:
    using Indices = std::index_sequence_for<Values...>;

    virtual void process()
    {
        if (!m_out.requestsData())
            return;
        takeLinked(Indices());
        const cImg& image = m_group.template getValue<0>();
        cImg result = this->m_functor(image);
        if (!result.isValid())
            return;
        result.copyImgAttr(image);
        m_out.send(result, m_group.getStamp());
    }

    /** Whether a sender that is enabled is linked with the value input. */
    template <std::size_t I> bool isLinked() const
    {
        return m_group.template getPort<I + 1>().receivesData();
    }

    /** Gives the functor the value of this match, if there is one. */
    template <std::size_t I> void take()
    {
        if (const auto* buffer = m_group.template getBuffer<I + 1>())
            std::get<I>(m_take)(this->m_functor, buffer->getValue());
    }

    cPortGroup<cImg, Values...> m_group;
    cOPort<cImg> m_out;

private:
    template <std::size_t... I> void makeOptional(std::index_sequence<I...>)
    {
        ((m_group.template getQueue<I + 1>().required = false), ...);
    }
    template <std::size_t... I> void takeLinked(std::index_sequence<I...>)
    {
        ((isLinked<I>() ? take<I>() : void()), ...);
    }

    std::tuple<void (*)(Functor&, const Values&)...> m_take;
};

/**
 * The form that works in place: the result is the input's own buffer where nobody else holds it, and a copy
 * of it otherwise, with everything that the input carries. A value that has arrived is taken even when its
 * sender is no longer linked.
 */
template <class FunctorType, class... Values>
class cInPlaceValueStationT : public cValueStationT<FunctorType, Values...> {
    using Base = cValueStationT<FunctorType, Values...>;

public:
    using cValueStationT<FunctorType, Values...>::cValueStationT;

protected:
    void process() override
    {
        if (!this->m_out.requestsData())
            return;
        takeAll(typename Base::Indices());
        Holder holder(getResultBuffer());
        if (!holder.buffer)
            return;
        this->m_functor(holder.buffer->getValue());
        this->m_out.sendBuffer(std::exchange(holder.buffer, nullptr));
    }

private:
    /** Holds a buffer for as long as it lives, whatever happens in the functor. */
    struct Holder {
        cBufferT<cImg>* buffer;
        explicit Holder(cBufferT<cImg>* i_buffer) : buffer(i_buffer) {}
        ~Holder()
        {
            if (buffer)
                buffer->releaseAndUnrefBufferAtPort();
        }
        Holder(const Holder&) = delete;
        Holder& operator=(const Holder&) = delete;
    };

    /** A buffer to work on, with one reference for the caller. */
    cBufferT<cImg>* getResultBuffer()
    {
        cBufferT<cImg>* const input = this->m_group.template getBuffer<0>();
        // With a delay the next match sees the input again: one more holder makes it a copy.
        const bool seenAgain = this->m_group.template getQueue<0>().delay > 0;
        const Holder holder(seenAgain && input->ref() ? input : nullptr);
        cImg* image;
        return this->m_out.getFreeOrDuplicateBuffer(input, image);
    }

    template <std::size_t... I> void takeAll(std::index_sequence<I...>) { (this->template take<I>(), ...); }
};

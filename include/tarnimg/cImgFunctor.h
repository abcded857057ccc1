#pragma once

#include <tarnimg/cSupportedImages.h>
#include <tarnimg/export.h>

class cImg;
class cObj;
template <class T> class cIPort;
template <> class cIPort<cImg>;

/**
 * Base of all image operations.
 *
 * A functor is used directly, with no graph: construct it, set its parameters, call `operator()`. Every
 * failure is a std::runtime_error that names the operator; the input images are untouched then. A functor
 * object is for one thread at a time, distinct objects are independent.
 *
 * The list of supported inputs names pixel types with channel counts; a channel count of 0 means any. An
 * empty list accepts everything.
 */
class TARNIMG_EXPORT cImgFunctor {
public:
    cImgFunctor();
    cImgFunctor(const cImgFunctor& i_other);
    cImgFunctor& operator=(const cImgFunctor& i_other);
    virtual ~cImgFunctor();

    /**
     * Enters each parameter into a property object, bound by reference: writing an entry changes the functor
     * at once. The property object owns the entries and must not outlive the functor.
     */
    virtual void refreshParams(cObj* i_params);

    /** Whether the image is valid and its type and channel count are listed; an empty list accepts any image.
     */
    bool isSupported(const cImg& i_image) const;
    const cSupportedImages::List& getSupportedInputs() const { return m_supportedInputs.getList(); }
    /** Appends the supported inputs to what a port takes. */
    void initSupportedTypes(cIPort<cImg>& io_port) const;

protected:
    void addSupportedInput(cImgType::ImageTypes i_type, unsigned int i_channels);
    /** One input for each row of a functor's table, in its order: `type` and `channels`. */
    template <class Table> void addSupportedInputs(const Table& i_variants)
    {
        for (const auto& variant : i_variants)
            addSupportedInput(variant.type, variant.channels);
    }

private:
    cSupportedImages m_supportedInputs;
};

#pragma once

#include <tarnimg/cImgType.h>
#include <tarnimg/export.h>

#include <QHash>
#include <boost/function.hpp>
#include <memory>

/**
 * Makes pixel type descriptors from a type id and a number of channels.
 *
 * The registry is filled while libraries are loaded, before other threads use it, and is read without a lock.
 */
class TARNIMG_EXPORT cImageTypeFactory {
public:
    using Creator = boost::function<cImgType*(unsigned)>;

    static QHash<cImgType::ImageTypes, Creator>& getRegistry();
    /** Adds a creator if the type has none and the function is not empty. Returns whether the type had none.
     */
    static bool registerType(const cImgType::ImageTypes& i_type, const Creator& i_creator);
    /** A new descriptor, which the caller owns, or null for an unknown type. */
    static cImgType* create(const cImgType::ImageTypes& i_type, unsigned i_numChannels);

    /** The usual creator: a new `T` with that number of channels. */
    template <class T> static cImgType* make(unsigned i_numChannels);
};

/** Registers the fourteen pixel types and the metatype of `cImg`; done once when the library is loaded. */
TARNIMG_EXPORT void registerImageTypes();

template <class T> cImgType* cImageTypeFactory::make(unsigned i_numChannels)
{
    auto type = std::make_unique<T>();
    static_cast<cImgType&>(*type).setNumChannels(i_numChannels);
    return type.release();
}

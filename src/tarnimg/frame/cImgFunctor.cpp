#include <tarnimg/cImgFunctor.h>

#include <tarnimg/cIPortImg.h>
#include <tarnimg/cImg.h>

cImgFunctor::cImgFunctor() = default;
cImgFunctor::cImgFunctor(const cImgFunctor& i_other) = default;
cImgFunctor& cImgFunctor::operator=(const cImgFunctor& i_other) = default;
cImgFunctor::~cImgFunctor() = default;

void cImgFunctor::refreshParams(cObj*)
{
}

bool cImgFunctor::isSupported(const cImg& i_image) const
{
    if (m_supportedInputs.isEmpty())
        return true;
    if (!i_image.isValid())
        return false;
    for (const auto& [type, channels] : m_supportedInputs) {
        if (type == i_image.getImgType().getTypeId() && (channels == 0 || channels == i_image.getNumChannels()))
            return true;
    }
    return false;
}

void cImgFunctor::initSupportedTypes(cIPort<cImg>& io_port) const
{
    for (const auto& [type, channels] : m_supportedInputs)
        io_port.addImageType(type, channels);
}

void cImgFunctor::addSupportedInput(cImgType::ImageTypes i_type, unsigned int i_channels)
{
    m_supportedInputs.append({i_type, i_channels});
}

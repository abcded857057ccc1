#include <tarnimg/cImgFunctor.h>

#include <tarnimg/cIPortImg.h>
#include <tarnimg/cImg.h>

cImgFunctor::cImgFunctor() = default;
cImgFunctor::cImgFunctor(const cImgFunctor& i_other) = default;
cImgFunctor& cImgFunctor::operator=(const cImgFunctor& i_other) = default;
cImgFunctor::~cImgFunctor() = default;

void cImgFunctor::refreshParams(cObj*) {}

bool cImgFunctor::isSupported(const cImg& i_image) const
{
    return getSupportedInputs().isEmpty() || (i_image.isValid() && m_supportedInputs.takes(i_image));
}

void cImgFunctor::initSupportedTypes(cIPort<cImg>& io_port) const
{
    for (const auto& [type, channels] : getSupportedInputs())
        io_port.addImageType(type, channels);
}

void cImgFunctor::addSupportedInput(cImgType::ImageTypes i_type, unsigned int i_channels)
{
    m_supportedInputs.add(i_type, i_channels);
}

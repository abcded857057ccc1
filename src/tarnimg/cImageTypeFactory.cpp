#include <tarnimg/cImageTypeFactory.h>

#include <tarnimg/cImg.h>
#include <tarnimg/cImgTypeComplex.h>
#include <tarnimg/cImgTypeFloat32.h>
#include <tarnimg/cImgTypeFloat64.h>
#include <tarnimg/cImgTypeGradI16.h>
#include <tarnimg/cImgTypeGradI32.h>
#include <tarnimg/cImgTypeRGB24.h>
#include <tarnimg/cImgTypeRGB32.h>
#include <tarnimg/cImgTypeSInt16.h>
#include <tarnimg/cImgTypeSInt32.h>
#include <tarnimg/cImgTypeSInt64.h>
#include <tarnimg/cImgTypeSInt8.h>
#include <tarnimg/cImgTypeUInt16.h>
#include <tarnimg/cImgTypeUInt32.h>
#include <tarnimg/cImgTypeUInt8.h>

QHash<cImgType::ImageTypes, cImageTypeFactory::Creator>& cImageTypeFactory::getRegistry()
{
    static QHash<cImgType::ImageTypes, Creator> s_registry;
    return s_registry;
}

bool cImageTypeFactory::registerType(const cImgType::ImageTypes& i_type, const Creator& i_creator)
{
    auto& registry = getRegistry();
    if (registry.contains(i_type))
        return false;
    if (!i_creator.empty())
        registry.insert(i_type, i_creator);
    return true;
}

cImgType* cImageTypeFactory::create(const cImgType::ImageTypes& i_type, unsigned i_numChannels)
{
    const auto& registry = getRegistry();
    const auto creator = registry.constFind(i_type);
    return creator != registry.constEnd() ? (*creator)(i_numChannels) : nullptr;
}

void registerImageTypes()
{
    cImageTypeFactory::registerType(cImgType::UInt8, cImageTypeFactory::make<cImgTypeUInt8>);
    cImageTypeFactory::registerType(cImgType::UInt16, cImageTypeFactory::make<cImgTypeUInt16>);
    cImageTypeFactory::registerType(cImgType::UInt32, cImageTypeFactory::make<cImgTypeUInt32>);
    cImageTypeFactory::registerType(cImgType::SInt64, cImageTypeFactory::make<cImgTypeSInt64>);
    cImageTypeFactory::registerType(cImgType::SInt32, cImageTypeFactory::make<cImgTypeSInt32>);
    cImageTypeFactory::registerType(cImgType::SInt16, cImageTypeFactory::make<cImgTypeSInt16>);
    cImageTypeFactory::registerType(cImgType::SInt8, cImageTypeFactory::make<cImgTypeSInt8>);
    cImageTypeFactory::registerType(cImgType::RGB32, cImageTypeFactory::make<cImgTypeRGB32>);
    cImageTypeFactory::registerType(cImgType::RGB24, cImageTypeFactory::make<cImgTypeRGB24>);
    cImageTypeFactory::registerType(cImgType::Gradient16, cImageTypeFactory::make<cImgTypeGradI16>);
    cImageTypeFactory::registerType(cImgType::Gradient32, cImageTypeFactory::make<cImgTypeGradI32>);
    cImageTypeFactory::registerType(cImgType::Float32, cImageTypeFactory::make<cImgTypeFloat32>);
    cImageTypeFactory::registerType(cImgType::Float64, cImageTypeFactory::make<cImgTypeFloat64>);
    cImageTypeFactory::registerType(cImgType::Complex, cImageTypeFactory::make<cImgTypeComplex>);

    qRegisterMetaType<cImg>("cImg");
    qRegisterMetaType<cDblRange>("cDblRange"); // the argument of cImgType::rangeChanged
}

#include "templateMatch.h"

#include "frame/messages.h"

#include <QStringList>
#include <customipp/customipp.h>
#include <tarnimg/checkIPPStatus.h>

namespace templateMatch {

namespace {

/** The extents of a result, in the order in which they are offered. */
struct Mode {
    const char* key;
    int shape;
    int border; ///< by so many times the template's size less one the result is larger than the image
};
constexpr Mode s_modes[] = {{"Valid", ippiROIValid, -1}, {"Same", ippiROISame, 0}, {"Full", ippiROIFull, 1}};

const Mode* findMode(const QString& i_key)
{
    for (const Mode& mode : s_modes)
        if (i_key == QLatin1String(mode.key))
            return &mode;
    return nullptr;
}

[[noreturn]] void fail(const char* i_message, const char* i_operator)
{
    frame::fail(QString::fromLatin1(i_message).arg(QString::fromLatin1(i_operator)));
}

} // namespace

void bindParams(cObj* i_params, QString& i_mode, QString& i_norm, const QMetaObject& i_class)
{
    QStringList keys;
    for (const Mode& mode : s_modes)
        keys.append(QString::fromLatin1(mode.key));
    frame::bindChoiceParam(i_params, "mode", i_mode, keys);
    frame::bindEnumParam(i_params, "norm", i_norm, i_class, "ENorm");
}

cImg run(const cImgFunctor& i_functor, const Functions& i_functions, const cImg& i_image,
    const cImg& i_template, const QString& i_mode, int i_norm, cWorkMemory& io_work, const char* i_operator)
{
    frame::checkInput(i_functor, i_image, i_operator);
    frame::checkInput(i_functor, i_template, i_operator);
    if (i_image.getNumChannels() != i_template.getNumChannels())
        frame::failDiffering(frame::s_channelsMustBeEqual, i_image, i_template, i_operator);
    if (!i_image.isKindOf(i_template.getImgType().getTypeId()))
        frame::failDiffering(frame::s_typesMustBeEqual, i_image, i_template, i_operator);
    const Mode* mode = findMode(i_mode);
    const bool isSmaller
        = i_image.getWidth() < i_template.getWidth() || i_image.getHeight() < i_template.getHeight();
    if (mode && mode->shape == ippiROIValid && isSmaller)
        fail(frame::s_firstMustNotBeSmaller, i_operator);

    // An unknown mode gets no result image; the pixel function then refuses the missing pointer.
    cImg result;
    const IppEnum flags = i_norm | (mode ? mode->shape : 0);
    int bytes = 0;
    if (mode) {
        checkIPPStatus(
            i_functions.bufferSize(frame::sizeOf(i_image), frame::sizeOf(i_template), flags, &bytes));
        const auto extent = [&](unsigned image, unsigned part) {
            return unsigned(int(image) + mode->border * (int(part) - 1));
        };
        result = cImg(cImgType::Float32, extent(i_image.getWidth(), i_template.getWidth()),
            extent(i_image.getHeight(), i_template.getHeight()), i_image.getNumChannels());
    }
    if (const Variant* variant = frame::find(i_functions.variants, i_image))
        frame::checkStatus(
            variant->call(i_image, i_template, result, flags, io_work.grow(std::size_t(bytes))), i_operator);
    return result;
}

} // namespace templateMatch

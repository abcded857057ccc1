#pragma once

#include <tarnflow/cIPort.h>
#include <tarnimg/cImg.h>
#include <tarnimg/cSupportedImages.h>
#include <tarnimg/export.h>

/** Images are large: the pools of their outputs hold few buffers. */
template <> inline constexpr unsigned int defaultPoolSize<cImg> = 5;

/**
 * An input port for images, with a list of the pixel types that it takes. The list is checked when a link is
 * made and again for each image that arrives in the queue; an image that is not taken is given back with a
 * line on the error trace. The list is filled at construction and not changed while the port is linked.
 */
template <> class TARNIMG_EXPORT cIPort<cImg> : public cIPortT<cImg> {
public:
    cIPort();
    cIPort(cDfpNode* i_node, const QString& i_name);
    ~cIPort() override;

    void addImageType(cImgType::ImageTypes i_type, unsigned int i_channels)
    {
        m_supported.add(i_type, i_channels);
    }
    const cSupportedImages::List& getSupportedTypes() const { return m_supported.getList(); }
    const cSupportedImages& getSupportedImages() const { return m_supported; }

    /** Always false, also with a direct callback, which is used all the same. */
    bool hasDirectCallback() const override;
    bool checkStaticData(const cPortBase* i_other) override;
    /** Rich text for a tooltip of the host. */
    QString getTooltip() const override;

protected:
    bool checkDynamicData(const cImg& i_image) override;

private:
    cSupportedImages m_supported;
};

#include <tarnimg/cOPortImg.h>

extern template class cBufferT<cImg>;
extern template class cIPortT<cImg>;
extern template class cOPortT<cImg>;
extern template class cImport<cImg>;
extern template class cExport<cImg>;
extern template class cBufferConverter<cImg>;

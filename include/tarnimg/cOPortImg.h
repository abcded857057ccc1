#pragma once

#include <tarnflow/cOPort.h>
#include <tarnimg/cImg.h>
#include <tarnimg/cSupportedImages.h>
#include <tarnimg/export.h>

/** An output port for images. Its list of pixel types serves the check of links; an empty one declares any
 * image. */
template <> class TARNIMG_EXPORT cOPort<cImg> : public cOPortT<cImg> {
public:
    cOPort();
    /** @param i_poolSize the most buffers that are under way at once; 0: none until `init` */
    cOPort(cDfpNode* i_node, const QString& i_name, unsigned int i_poolSize);
    ~cOPort() override;

    void addImageType(cImgType::ImageTypes i_type, unsigned int i_channels)
    {
        m_supported.add(i_type, i_channels);
    }
    const cSupportedImages::List& getSupportedTypes() const { return m_supported.getList(); }
    const cSupportedImages& getSupportedImages() const { return m_supported; }

    bool checkStaticData(const cPortBase* i_other) override;
    /** Rich text for a tooltip of the host. */
    QString getTooltip() const override;

private:
    cSupportedImages m_supported;
};

#include <tarnimg/cIPortImg.h>

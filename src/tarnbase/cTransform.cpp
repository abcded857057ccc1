#include <tarnbase/cTransform.h>

cTransform::~cTransform() = default;

// A host, built against the installed library alone; all_headers.h includes every header that was installed.
#include "all_headers.h"

int main() {
    ZecEffect* effect = ZecCreateEffect(0);
    const bool isSet = ZecSetBeautyParams(effect, 0.0f, 0.0f) && !ZecSetLutParams(effect, "lut", 1.0f);
    unsigned char luma[] = {1, 2, 3, 4}, chroma[] = {5, 6}, copy[4] = {};
    const ZecImage input = {{luma, chroma, nullptr}, {2, 2, 0}};
    ZecImage output = {{copy, chroma, nullptr}, {2, 2, 0}};
    ZecRenderCore* core = ZecCreateRenderCore();
    const bool isCopied = ZecRender(core, {effect}, &input, &output, 0, 0, 1, 2, 2, 0) && copy[3] == 4;
    return isSet && isCopied && CZeString::fromUtf8("text").toUpper().size() == 4 ? 0 : 1;
}

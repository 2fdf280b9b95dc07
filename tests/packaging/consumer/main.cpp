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
    const bool isText = CZeString::fromUtf8("text").toUpper().size() == 4;

    zebeauty::catchLibraryErrors();
    zebeauty::Beautifier beautifier({0.5f, 0.5f}, zebeauty::takeLibraryError);
    zebeauty::Frame frame;
    frame.planes = {luma, chroma, 2, 2};
    frame.width = frame.height = 2;
    const bool isDoneOrExplained = beautifier.process(frame) != std::string() && luma[3] != 0;
    return isSet && isCopied && isText && isDoneOrExplained ? 0 : 1;
}

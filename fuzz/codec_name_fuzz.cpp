// Any name and number of a codec, and any text through it.

#include "core/codecs/text_codec.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/plain_rules.h"
#include "log/log_settings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ZeSetLogFilter(0);
    FuzzInput input(data, size);
    const int number = input.byte();
    const std::string name = input.text(input.byte() % 16), text = input.text();
    const CZeTextCodec codec(CZeByteArray(name.data(), static_cast<int>(name.size())));
    require(codec.mib() == plainMib(name) && codec.isValid() == (codec.mib() != 0));

    const CZeByteArray bytes(text.data(), static_cast<int>(text.size()));
    for (const int mib : {codec.mib(), number}) {
        const CZeString units = CZeTextCodec::decode(mib, bytes.constData(), bytes.size());
        const CZeByteArray back = CZeTextCodec::encode(mib, units);
        if (mib == CZeTextCodec::Latin1)
            require(units == CZeLatin1String(text.data(), static_cast<int>(text.size())) && back == bytes);
        else if (mib == CZeTextCodec::Utf8)
            require(units == CZeString::fromUtf8(bytes) && back == units.toUtf8());
        else
            require(units.isNull() && back.isNull());
    }
    require(codec.toUnicode(bytes) == CZeTextCodec::decode(codec.mib(), bytes.constData(), bytes.size()));
    require(codec.fromUnicode(codec.toUnicode(bytes)) ==
            CZeTextCodec::encode(codec.mib(), codec.toUnicode(bytes)));
    return 0;
}

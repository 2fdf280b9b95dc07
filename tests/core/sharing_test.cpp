// Copies of one container on several threads. The thread sanitizer is the judge of the rest.

#include "tests/core/text.h"

#include <gmock/gmock.h>

#include <thread>
#include <vector>

namespace {

TEST(Sharing, CopiesLiveOnDifferentThreads) {
    const CZeString string = text(u"one block");
    const CZeByteArray array("one block");
    const CZeStringList list = string.split(' ');
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c', 'd'}) {
        // Each thread starts from copies of its own, and the last owner of a block may be any of them.
        threads.emplace_back([letter, string, array, list] {
            for (int i = 0; i < 500; ++i) {
                CZeString s = string;
                CZeByteArray b = array;
                CZeStringList l = list;
                s.append(letter);
                b[0] = letter;
                l.append(s);
                ASSERT_EQ(utf8(s), std::string("one block") + letter);
                ASSERT_EQ(bytes(b), letter + std::string("ne block"));
                ASSERT_EQ(l.at(2), s);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(utf8(string), "one block");
    EXPECT_EQ(bytes(array), "one block");
    EXPECT_EQ(list, string.split(' '));
}

} // namespace

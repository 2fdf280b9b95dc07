#include "core/io/random_name.h"

#include <cstdlib>

void ze::writeRandomName(char* name, int count) {
    constexpr char kCharacters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    for (int i = 0; i < count; ++i)
        name[i] = kCharacters[arc4random_uniform(sizeof kCharacters - 1)];
    name[count] = '\0';
}

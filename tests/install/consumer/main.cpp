#include <ZorWBx.h>

#include <cstdio>

int main() {
    ZorWBEnvironment environment;
    ZorWBValue two(2), three(3);
    ZorQelString text = ZorQelString("sum = ").AppendInt(two.GetAsInteger() + three.GetAsInteger());
    std::printf("%s (level %u)\n", text.GetString(), environment.GetWBLevel());
    return 0;
}

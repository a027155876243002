#include "support/small_deck.hpp"

#include "support/deck_run.hpp"

namespace {
const char* const base_deck = R"(small test deck
three bricks in a row
heat and mass
0 0 0 0 0 0 1 3 0 0 0 1 0 0   [options]
1 1 1                         [ngx]
3.0                           [xg]
1.0                           [yg]
2.0                           [zg]
3                             [nlx]
1                             [nly]
2                             [nlz]
0 0.0 0.0                     [nwtl]
0 0 0 0 0                     [wells]
0 0 0 0 0 0 0 0 0.0 0         [fractures]
1 1 0 0 0 0 0                 [flow kb]
1 2 1 3 10.0 0                [flow face 1]
1 2 1 3 9.0 0                 [flow face 2]
1 6 1.0e-5 1.0e-5 1.0e-5 2.0 800.0 2650.0 0.3 1.0 0   [ranges]
0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 [blocks]
1.0e-4                        [ss]
0 10.0                        [init]
0 0 0 0 1 1 0                 [heat kb]
1 4 1 2 8.0 0                 [heat bottom]
1 4 1 2 5.0 0                 [heat top]
0 0 0 0 0 0 0                 [mass kb]
2.0 0.3 1.0                   [tcon]
1 4 5.0 0.0 365.0 0.0 -50.0 0.0 0.0 -1   [tsets]
0.1 0.0 365.0 0.0 0.0 0.0 0.0 [bz]
1.0 0.0 365.0 0.0 0.0 0.0 0.0 [sat]
0.0 0.0 1.0 0.0 0.0 0.0 0.0   [tide]
0 0.0 0.0 0.0 1               [ivel]
1.0 0.1 0.1 0.01 1.0e-9 1.0 0.0 0.0 0   [disp]
4186.0 1000.0 2100.0 917.0 0.58 2.24 334000.0   [thermal]
0.05 1.0 -1.0 1.0 1 1         [wu medium]
0.05 1.0 -1.0 1.0 1 1         [wu fractures]
1 4 1 2 1 3 8.0 5.0 0         [tinit]
1 4 1 2 1 3 0.0 0.0 0         [cinit]
1.0e-4 1.0e-3 1.0e-2 1.0e-3 3 3   [cc]
0.0 0.0 5.0                   [hext]
0 0 0 0 0                     [knox]
1 0 0 0 0                     [knoy]
3 0 0 0 0                     [knoz]
1.0 2.0 0.0 0.0 0.0           [print times]
0.0 2.0 1.0 1 1 1 1 0         [T1]
0.0 1.0 0.0 1.0               [T2]
0 0 0 0 0.0 0                 [T3]
0 0 0 0 0 0 0.0 0.0 0.0 0     [T4]
0 0 0 0 0.0 0.0 0.0 0         [T5]
)";
}  // namespace

std::string small_deck(const std::vector<std::pair<std::string, std::string>>& replace)
{
    std::vector<std::string> lines = split_lines(base_deck);
    std::vector<std::string> out;
    for (const std::string& l : lines) {
        bool replaced = false;
        for (const auto& [tag, text] : replace)
            if (l.find(tag) != std::string::npos) {
                if (!text.empty()) out.push_back(text);
                replaced = true;
                break;
            }
        if (!replaced) out.push_back(l);
    }
    return join_lines(out);
}

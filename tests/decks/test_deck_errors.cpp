#include "support/deck_run.hpp"

#include <gtest/gtest.h>

namespace {

// The example deck with line `n` (1-based) replaced; the remark stays behind the values.
std::string with_line(int n, const std::string& values)
{
    std::vector<std::string> lines = split_lines(example_deck());
    lines.at(n - 1) = values + "   replaced";
    return join_lines(lines);
}

std::string with_lines(int n, int count, const std::string& text)
{
    std::vector<std::string> lines = split_lines(example_deck());
    lines.erase(lines.begin() + (n - 1), lines.begin() + (n - 1) + count);
    lines.insert(lines.begin() + (n - 1), text);
    return join_lines(lines);
}

struct BadDeck {
    int line;
    const char* values;
    const char* words;  // the first line of the record's own message
};

// Every record that has words of its own, and every check of the deck records.
const BadDeck kBad[] = {
    {4, "0 0 0 0 0 0 1 3 0 0 0 x 0 0", "error reading kprt,kcntrl,kwt,kint,kintv,kgo,ksat"},
    {4, "0 0 0 0 0 0 1 3 0 0 0 3 0 0", "error, ksubtr for thermal transport must be 1"},
    {4, "0 0 0 0 0 0 0 3 0 0 0 2 0 0", "if unsat. zone included, then ngz must be > 1 "},
    {11, "100000", "error, ne>maxne or nn>maxn, check dimensions"},
    {12, "11 0.0 0.0", "error - the number of deformable watertable layers"},
    {13, "1 1 1 x 0", "error reading breakthrough points"},
    {14, "1 1 1 1 1 1 2 5 0.001 q", "error in reading fracture data"},
    {15, "3 0 0 0 0 0 0", "only top surface boundary can be type 3 or 4"},
    {16, "1 3 1 11 20.0 0", "Error in Dirichlet boundary indices; ktype =     0"},
    {18, "1 200 1.0e-5 1.0e-5 x 2.0 800.0 2650.0 0.3 1.0 0", "error in reading elemental hydraulic Kx,Ky,Kz, etc."},
    {19, "0 0 0 0 0 0 0 0 0 0 0 0 0 0 z", "error reading indexed K data in gelmor.data"},
    {20, "ss", "error reading storage term ss"},
    {22, "0 0 0 0 0 6 0", "can only have type 6 on top bdy for flow"},
    {26, "2.0 abc 1.0", "error reading tcon,porsurf,satsurf"},
    {27, "1 21 5.0 0.0 365.0 0.0 -50.0 0.0 x -1", "error reading surfat terms (tair,bz,sat or tide)..."},
    {27, "1 21 5.0 0.0 0.0 0.0 -50.0 0.0 0.0 -1", "error ... cosine period=0"},
    {27, "1 21 -60.0 0.0 365.0 0.0 -50.0 0.0 0.0 -1", "non-physical cosine surface temperature parameters"},
    {27, "1 21 5.0 0.0 365.0 400.0 -50.0 0.0 0.0 -1", "non-physical cosine surface temperature parameters"},
    {27, "1 21 5.0 -0.2 365.0 0.0 -50.0 0.0 0.0 -1", "non-physical cosine surface temperature parameters"},
    {28, "0.1 0.0 0.0 0.0 0.0 0.0 0.0", "error ... cosine period=0"},
    {30, "0.0 0.0 1.0 0.0 0.0 0.0 x", "error reading surfat terms (tair,bz,sat or tide)..."},
    {31, "0 0.0 0.0 0.0 0", "error, iflipv=0, stopping ..."},
    {32, "1.0 0.1 0.1 0.01 1.0e-9 1.0 1.0e-6 1.0 0", "incompatible decay-agefx"},
    {33, "4186.0 1000.0 2100.0 917.0 0.58 x 334000.0", "error reading cf,pf ... etc."},
    {33, "4186.0 1000.0 2100.0 917.0 0.58 200.0 334000.0", "error in thermal K of water or ice"},
    {34, "0.05 1.0 -1.0 1.0 1 x", "error reading wlh,p,q, ... modelwu, modelkr"},
    {35, "0.05 1.0 -1.0 1.0 1.5 1", "error reading wlh,p,q, ... modelwu, modelkr"},
    {34, "0.05 1.0 -1.0 1.0 5 1", "Error in Wu: modelwu is not 0-4"},
    {34, "0.05 1.0 -1.0 1.0 1 3", "Error in kr: modelkr is not 0-4"},
    {34, "0.05 0.0 -1.0 1.0 3 1", "Error in Wu: q cannot=0 with Wu model 2 or 3"},
    {36, "1 21 1 2 1 11 8.0 x 0", "error reading temperature initial conditions"},
    {36, "0 0 0 0 0 0 0.0 0.0 0", "error in initial conditions for T transport ..."},
    {36, "1 22 1 2 1 11 8.0 5.0 0", "error in initial conditions for T transport ..."},
    {37, "1 21 1 2 1 11 0.0 x 0", "error reading concentration initial conditions"},
    {37, "1 21 1 3 1 11 0.0 0.0 0", "error in initial c condition nodes for transport..."},
    {38, "1.0e-4 1.0e-3 1.0e-2 1.0e-3 10 x", "error in reading convergence criteria,"},
    {40, "22 0 0 0 0", "Error with knox ... "},
    {41, "0 -1 0 0 0", "Error with knoy ... "},
    {42, "12 0 0 0 0", "Error with knoz ... "},
    {44, "365.0 365.0 1.0 10 1 30 1 0", "error detected in time step data"},
    {44, "0.0 365.0 1.0 x 1 30 1 0", "error reading time step data ..."},
    {45, "0.0 1.0 0.0 x", "error reading hinc,rinc,rtdiff"},
    {47, "0 0 0 0 0 0 0.0 x 0.0 0", "error in reading internal heat flux"},
};

TEST(DeckErrors, EveryRecordStopsWithItsOwnWords)
{
    for (const BadDeck& b : kBad) {
        const DeckRun r = run_deck(with_line(b.line, b.values));
        EXPECT_EQ(r.status, 0) << b.values;
        EXPECT_TRUE(r.has_message(b.words)) << "line " << b.line << " '" << b.values << "'\n" << r.listing;
        EXPECT_FALSE(r.has("**** normal exit ****")) << b.values;
        // a fatal message never reaches the console
        EXPECT_EQ(r.console.find(b.words), std::string::npos) << b.values;
        EXPECT_EQ(r.console.find("normal exit"), std::string::npos) << b.values;
    }
}

TEST(DeckErrors, MessagesWithValuesAndSeveralLines)
{
    DeckRun r = run_deck(with_line(40, "22 0 0 0 0"));
    EXPECT_TRUE(r.has("\n          Error with knox ...           22\n           stopping ... \n")) << r.listing;

    r = run_deck(with_line(4, "0 0 0 0 1 0 1 3 0 0 0 9 0 0"));
    EXPECT_TRUE(r.has("\n\n          error, ksubtr for thermal transport must be 1\n"
                      "           (Co on rhs for L.Heat) or 2 (kappa,R)\n"
                      "          program stopping ...\n"))
        << r.listing;

    // a second surface temperature set asking for a third
    r = run_deck(with_line(27, "1 10 5.0 0.0 365.0 0.0 -50.0 0.0 0.0 0\n11 21 5.0 0.0 365.0 0.0 -50.0 0.0 0.0 1"));
    EXPECT_TRUE(r.has_message("error, max number of surface T groups reached,")) << r.listing;
    EXPECT_TRUE(r.has_message("maxs =            2"));

    // sixteen wells
    std::string wells;
    for (int w = 1; w <= 16; ++w) wells += "1 1 1 2 " + std::string(w < 16 ? "1" : "0") + "\n";
    r = run_deck(with_lines(13, 1, wells));
    EXPECT_TRUE(r.has(" number of monitor wells ...           16")) << r.listing;
    EXPECT_TRUE(r.has_message("Error - # monitor wells > maxbt"));
    EXPECT_TRUE(r.has_message("program stopping .... "));
}

TEST(DeckErrors, HugeCountsOnEveryAxisStopAtTheSizeLimit)
{
    // nodes (2^31)^3: the count passes the range of long long and is still stopped
    const DeckRun r = run_deck(with_lines(9, 3, "2147483647\n2147483647\n2147483647"));
    EXPECT_TRUE(r.has(" flow grid size, nx,ny,nz:  2000000000  2000000000  2000000000\n")) << r.listing;
    EXPECT_TRUE(r.has_message("error, ne>maxne or nn>maxn, check dimensions")) << r.listing;
}

TEST(DeckErrors, OptionChecksThatDependOnOtherRecords)
{
    // kint = 1 refuses decay
    std::string deck = with_line(4, "0 0 0 1 0 0 1 3 0 0 0 2 0 0");
    std::vector<std::string> lines = split_lines(deck);
    lines[31] = "1.0 0.1 0.1 0.01 1.0e-9 1.0 1.0e-6 0.0 0";
    DeckRun r = run_deck(join_lines(lines));
    EXPECT_TRUE(r.has_message("decay only coded for direct integration option")) << r.listing;
    EXPECT_TRUE(r.has_message("in the meantime, use kint=1"));

    // a heat-only run refuses age growth; kmass = 0 reads no mass section and no
    // concentration blocks
    lines = split_lines(example_deck());
    lines[3] = "0 0 0 0 0 0 1 0 0 0 0 2 0 0";
    lines.erase(lines.begin() + 36);  // concentration block
    lines.erase(lines.begin() + 23, lines.begin() + 25);  // mass boundary section
    lines[29] = "1.0 0.1 0.1 0.01 1.0e-9 1.0 0.0 1.0 0";
    r = run_deck(join_lines(lines));
    EXPECT_TRUE(r.has_message("incompatible kmass-decay-agefx")) << r.listing;
    EXPECT_TRUE(r.has_message("   if agefx>0 (age transport), must set kmass=2"));

    // transport only with no velocity
    r = run_deck(with_line(4, "0 2 0 0 0 0 1 3 0 0 0 2 0 0"));
    EXPECT_TRUE(r.has_message("Error: kcntrl=2 and ivel=0")) << r.listing;
}

TEST(DeckErrors, RecordsWithoutWordsStopInTheInputLayer)
{
    DeckRun r = run_deck(with_line(5, "1 one 1"));
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(r.has_message("input error: gelmor.data line 5, reading record 3 (ngx ngy ngz)")) << r.listing;
    EXPECT_TRUE(r.has_message("expected an integer, found \"one\""));
    EXPECT_TRUE(r.console.find("input error") == std::string::npos);

    r = run_deck(with_line(21, "0.5 20.0"));  // init takes no decimal point
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(r.has("record 15b (init h0)")) << r.listing;

    // end of file inside a record with words of its own is still the input layer's
    std::vector<std::string> lines = split_lines(example_deck());
    lines.resize(19);
    r = run_deck(join_lines(lines));
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(r.has_message("input error: end of file gelmor.data after line 19")) << r.listing;
    EXPECT_TRUE(r.has_message("while reading record 15a (ss)"));
}

}  // namespace

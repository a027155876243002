// The reader's trace: what a sink sees of each read, and that a sink changes no value.

#include "input/record_reader.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

struct Seen {
    std::string record;
    int first = 0, last = 0;
    std::vector<std::string> values;
    std::string rest;
    ReadStatus status = ReadStatus::ok;
};

struct Sink final : TraceSink {
    std::vector<Seen> reads;
    std::vector<std::string> notes;
    void read(const ReadTrace& r) override
    {
        reads.push_back({std::string(r.record), r.first_line, r.last_line, r.values, std::string(r.rest), r.status});
    }
    void note(std::string_view text) override { notes.emplace_back(text); }
};

const char* const kText = "a title line\n"
                          "1 2*3.5\n"
                          "\n"
                          "4,,\n"
                          "6 / 7 8\n"
                          "9 x\n";

// The same reads with and without a sink; returns what was read.
std::vector<double> read_all(TraceSink* sink)
{
    std::istringstream in(kText);
    RecordReader rd(in, "t");
    rd.set_trace(sink);
    std::string title;
    int a = 0, b = -1, c = -1, d = -1;
    double x = 0, y = 0;
    rd.label("title");
    EXPECT_EQ(rd.title(title), ReadStatus::ok);
    rd.label("first");
    EXPECT_EQ(rd.read(a, x, y, b), ReadStatus::ok);  // 1, 3.5, 3.5 and then 4 on line 4
    rd.note("between");
    rd.label("second");
    EXPECT_EQ(rd.read(c, d), ReadStatus::ok);  // 6, then "/" keeps d
    EXPECT_EQ(rd.read(c, d), ReadStatus::bad); // unlabelled: 9, then "x"
    return {double(a), x, y, double(b), double(c), double(d)};
}

TEST(ReaderTrace, ReportsLinesValueTextsAndTheDroppedRest)
{
    Sink sink;
    const std::vector<double> traced = read_all(&sink);
    EXPECT_EQ(traced, read_all(nullptr));
    EXPECT_EQ(traced, (std::vector<double>{1, 3.5, 3.5, 4, 9, -1}));
    ASSERT_EQ(sink.reads.size(), 4u);
    const Seen& t = sink.reads[0];
    EXPECT_EQ(t.record, "title");
    EXPECT_EQ(t.first, 1);
    EXPECT_EQ(t.values, std::vector<std::string>{"a title line"});
    const Seen& f = sink.reads[1];
    EXPECT_EQ(f.record, "first");
    EXPECT_EQ(f.first, 2);
    EXPECT_EQ(f.last, 4);  // the blank line 3 is passed over
    EXPECT_EQ(f.values, (std::vector<std::string>{"1", "3.5", "3.5", "4"}));
    EXPECT_EQ(f.rest, ",,");  // the null after 4 belongs to no variable and is dropped
    const Seen& s = sink.reads[2];
    EXPECT_EQ(s.record, "second");
    EXPECT_EQ(s.first, 5);
    EXPECT_EQ(s.values, (std::vector<std::string>{"6", "/"}));
    EXPECT_EQ(s.rest, " 7 8");
    const Seen& u = sink.reads[3];
    EXPECT_EQ(u.record, "");  // a label serves one read
    EXPECT_EQ(u.status, ReadStatus::bad);
    EXPECT_EQ(u.first, 6);
    EXPECT_EQ(u.values, (std::vector<std::string>{"9", "x"}));
    EXPECT_EQ(sink.notes, std::vector<std::string>{"between"});
}

TEST(ReaderTrace, ValueByValueListsAndTheEndOfFile)
{
    std::istringstream in("1 2\n3\n4 5\n");
    RecordReader rd(in, "t");
    Sink sink;
    rd.set_trace(&sink);
    double v = 0;
    for (int pass = 0; pass < 2; ++pass) {  // a list of three values, then one that runs out
        rd.label(pass == 0 ? "pairs" : "short");
        rd.begin_list();
        for (int k = 0; k < 3; ++k) {
            const ReadStatus st = rd.value(v);
            if (st != ReadStatus::ok) break;
        }
        rd.end_list();
    }
    ASSERT_EQ(sink.reads.size(), 2u);  // a failed list reports once
    EXPECT_EQ(sink.reads[0].record, "pairs");
    EXPECT_EQ(sink.reads[0].first, 1);
    EXPECT_EQ(sink.reads[0].last, 2);
    EXPECT_EQ(sink.reads[0].values, (std::vector<std::string>{"1", "2", "3"}));
    EXPECT_EQ(sink.reads[1].record, "short");
    EXPECT_EQ(sink.reads[1].status, ReadStatus::eof);
    EXPECT_EQ(sink.reads[1].first, 3);
    EXPECT_EQ(sink.reads[1].last, 3);
    EXPECT_EQ(sink.reads[1].values, (std::vector<std::string>{"4", "5"}));
}

}  // namespace

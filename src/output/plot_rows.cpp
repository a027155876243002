#include "output/plot_rows.hpp"

// The stream buffers too, but one write of a large block saves the per-record calls.
void write_block(std::ostream& os, std::string& b)
{
    os.write(b.data(), (std::streamsize)b.size());
    b.clear();
}

// A zone's last record may be short; one that ended full has had its newline already.
void end_rows(Rows& r)
{
    if (r.n > 0) {
        r.b->push_back('\n');
        r.n = 0;
    }
    write_block(*r.os, *r.b);
}

void reserve_records(PlotOutputs& p)
{
    // a block plus the longest header or record that can follow it before the next check
    p.rec.reserve(block_size + 4096);
}

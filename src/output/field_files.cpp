#include "output/field_files.hpp"

// Six E 15/6 a node, one node a record, in node order (z fastest), so that the restart
// read takes the file as one list of 6*nnt values.  The title carries the time for the
// user only: a restarted run takes its clock from its own deck.
void write_field_file(std::ostream& os, const PlotContext& c, std::string& b)
{
    const Grid& g = c.g;
    const Fields& f = c.f;
    const std::string_view pad = "          ";  // the header lines stand ten blanks in
    add(b, pad);
    add(b, "Title=\"T,C,H at t= ");
    add_days(b, c.tdays);
    add_line(b, " days\"");
    add(b, pad);
    add_line(b, "variables=\"x\",\"y\",\"z\",\"T\",\"C\",\"H\"");
    add(b, pad);
    add(b, "zone i= ");
    add_count(b, g.nzt);
    add(b, ", j= ");
    add_count(b, g.ny);
    add(b, ", k= ");
    add_count(b, g.nx);
    add_line(b, ", T=\"T,C,H\"");
    Rows r = begin_rows(os, b, 6, 15, 6);
    put_values(r, 6LL * g.nnt, [&](long long k) {
        const int n = (int)(k / 6) + 1;
        switch (k % 6) {
        case 0: return g.x[n];
        case 1: return g.y[n];
        case 2: return g.z[n];
        case 3: return f.t1[n];
        case 4: return f.t2[n];
        default: return n <= g.nn ? f.u[n] : 0.0;
        }
    });
    end_rows(r);
}

// One ordered nzt x ny x nx zone per frame, node order as in the field files.
void movie_header(std::string& b)
{
    add_line(b, "Title=\"temperature 3D\"");
    add_line(b, "variables=\"x\",\"y\",\"z\",\"Temperature\",\"Concentration\"");
}

// The coordinates of the first frame serve all later ones: the frames only show T and C.
// The time label follows its frame and names it by number.
void write_movie_frame(std::ostream& os, const PlotContext& c, int& frames, std::string& b)
{
    const Grid& g = c.g;
    const bool first = ++frames == 1;
    add(b, "zone i=");
    add_count(b, g.nzt);
    add(b, ", j=");
    add_count(b, g.ny);
    add(b, ", k=");
    add_count(b, g.nx);
    add(b, ", T=\"");
    add_days(b, c.tdays);
    add(b, " days\"");
    add_line(b, first ? "" : ",D=(1,2,3)");
    Rows r = begin_rows(os, b, 5, 15, 6);
    const int per_node = first ? 5 : 2;  // x, y, z only in the first frame
    put_values(r, (long long)per_node * g.nnt, [&](long long k) {
        const int n = (int)(k / per_node) + 1;
        switch (k % per_node + (first ? 0 : 3)) {
        case 0: return g.x[n];
        case 1: return g.y[n];
        case 2: return g.z[n];
        case 3: return c.f.t1[n];
        default: return c.f.t2[n];
        }
    });
    end_rows(r);
    add(b, "text x=80., y=90.,f=helv,cs=frame,hu=point,h=20,c=black,bx=filled,bxf=white,bxo=white,t=\"");
    add_days(b, c.tdays);
    add(b, " days \",zn=");
    add_count(b, frames);
    b.push_back('\n');
    write_block(os, b);
}

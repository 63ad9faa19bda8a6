#include "report.hpp"

#include <iomanip>
#include <sstream>

namespace {

std::string number(double value, int decimals) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << value;
    return text.str();
}

std::string spread(const samples_t& samples, int decimals) {
    if (samples.empty()) {
        return "-";
    }
    return number(median(samples), decimals) + " (" + number(least(samples), decimals) + " to " +
           number(most(samples), decimals) + ")";
}

std::string ratio(const samples_t& dividend, const samples_t& divisor) {
    if (dividend.empty() || divisor.empty() || median(divisor) == 0) {
        return "-";
    }
    return number(median(dividend) / median(divisor), 2);
}

}  // namespace

void printRows(std::ostream& out, const rows_t& rows, const contestants_t& contestants) {
    out << "| median (least to most) |";
    for (const contestant_t& contestant : contestants) {
        out << " " << contestant.name << " |";
    }
    for (const contestant_id_t id : {whiptail, dialog, limit}) {
        out << " / " << contestants.at(id).name << " |";
    }
    out << "\n| --- | --- | --- | --- | --- | --- | --- | --- |\n";
    for (const row_t& row : rows) {
        out << "| " << row.what << " |";
        for (const samples_t& samples : row.samples) {
            out << " " << spread(samples, row.decimals) << " |";
        }
        for (const contestant_id_t id : {whiptail, dialog, limit}) {
            out << " " << ratio(row.samples.at(ours), row.samples.at(id)) << " |";
        }
        out << "\n";
    }
}

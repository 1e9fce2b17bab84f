// oakpack: from the rows of a CSV file to stored objects at the end of an item
// file. Each field is converted to its column's type, each row packed in the item
// format that is asked for and put behind its header, compressed where that is
// asked for. Either all rows get into the item file or none.
#include "catalog_file.h"
#include "csv.h"
#include "dbobjapi.h"
#include "item_file.h"
#include "row_builder.h"
#include "row_compact.h"
#include "row_expanded.h"

namespace tools {
namespace {

constexpr char kTool[] = "oakpack";

constexpr OAK_CMDLINE_OPT_A kOptions[] = {
    {"c", "catalog", "s=FILE", "The catalog with the table"},
    {"t", "table", "s=NAME", "The table whose rows these are"},
    {"f", "format", "s=FORMAT", "The item format: compact (the default) or expanded"},
    {"z", "compress", "s=METHOD", "How objects are compressed: none (the default), lzma or zero"},
    {"m", "min-size", "i=N", "Leave objects of fewer than N bytes as they are; 0 is the default"},
    {"CSV", nullptr, "#=CSV", "The rows, with a header that names columns; - for standard input"},
    {"ITEMS", nullptr, "#=ITEMS", "The item file, which is made where there is none"},
    {nullptr, nullptr, nullptr, nullptr},
};

constexpr char kDescription[] =
    "Packs the rows of a CSV file and appends them to an item file. The header names\n"
    "columns of the table in any order and case; columns that it does not name get their\n"
    "default. An empty field is NULL, a quoted empty field an empty text. Digits behind the\n"
    "point that a column has no place for are dropped, and the first such field is told;\n"
    "anything else that does not fit whole is an error, and the item file stays as it was.";

// ---- What is asked for ------------------------------------------------------

struct Request {
    const char *catalog = nullptr;
    const char *table = nullptr;
    const char *csv = nullptr;
    const char *items = nullptr;
    OAK_ITEM_FORMAT format = OAK_ITEM_FORMAT_COMPACT;
    OAK_COMPRESS_METHOD method = OAK_COMPRESS_NONE;
    uint32_t min_size = 0;
};

template <class Value>
struct Word {
    const char *word;
    Value value;
};
constexpr Word<OAK_ITEM_FORMAT> kFormats[] = {
    {"compact", OAK_ITEM_FORMAT_COMPACT},
    {"expanded", OAK_ITEM_FORMAT_EXPANDED},
};
constexpr Word<OAK_COMPRESS_METHOD> kMethods[] = {
    {"none", OAK_COMPRESS_NONE},
    {"lzma", OAK_COMPRESS_LZMA},
    {"zero", OAK_COMPRESS_ZERO},
};

// Takes the value of an option out of a list of words; says so when it is none.
template <class Value, size_t kCount>
void take_word(CommandLine *line, const char *option, const Word<Value> (&words)[kCount],
               Value *value) {
    const char *given = line->value(option);
    if (given == nullptr || line->exit_now()) {
        return;
    }
    std::string expected;
    for (const Word<Value> &word : words) {
        if (std::string_view(given) == word.word) {
            *value = word.value;
            return;
        }
        expected += expected.empty() ? "" : ", ";
        expected += word.word;
    }
    line->refuse(std::string("'") + given + "' for option '--" + option +
                 "' is none of: " + expected);
}

void take_min_size(CommandLine *line, uint32_t *value) {
    const char *given = line->value("min-size");
    int64_t number = 0;
    if (given == nullptr || line->exit_now()) {
        return;
    }
    if (osl_atoi64(given, &number) != sOKAY || number < 0 || number > UINT32_MAX) {
        line->refuse(std::string("'") + given +
                     "' for option '--min-size' is no number from 0 to 4294967295");
        return;
    }
    *value = static_cast<uint32_t>(number);
}

Request read_request(CommandLine *line) {
    Request request;
    request.catalog = line->required("catalog");
    request.table = line->required("table");
    request.csv = line->value("CSV");
    request.items = line->value("ITEMS");
    take_word(line, "format", kFormats, &request.format);
    take_word(line, "compress", kMethods, &request.method);
    take_min_size(line, &request.min_size);
    if (!line->exit_now() && std::string_view(request.items) == kStandardInput) {
        line->refuse("An item file cannot be standard input");
    }
    return request;
}

// ---- Packing ----------------------------------------------------------------

// From a row to its stored object.
class Packer {
  public:
    explicit Packer(const Request &request) : request_(request) { b_buffInit(&packed_, tag_); }
    ~Packer() {
        b_encoderDestroy(encoder_);
        b_lzmaDestroy(lzma_);
        b_buffTerm(&packed_);
    }
    Packer(const Packer &) = delete;
    Packer &operator=(const Packer &) = delete;

    OAK_RETCODE start() {
        const OAK_RETCODE status =
            b_encoderCreate(b_buffEmitByte, b_buffEmitBytesBulk, &packed_, tag_, &encoder_);
        return status == sOKAY ? b_lzmaCreate(&lzma_) : status;
    }
    // Appends the row's object to `out`.
    OAK_RETCODE pack(const OAK_ROW &row, OAK_BUFFER *out) {
        b_encoderReset(encoder_);
        const OAK_RETCODE status = request_.format == OAK_ITEM_FORMAT_COMPACT
                                       ? row_pack_compact(&row, encoder_)
                                       : row_pack_expanded(&row, encoder_);
        return status == sOKAY ? obj_compress(lzma_, request_.method, request_.min_size,
                                              request_.format, &packed_, out)
                               : status;
    }

  private:
    const Request &request_;
    Tag tag_;
    OAK_BUFFER packed_;
    B_ENCODER encoder_ = nullptr;
    LZMA lzma_ = nullptr;
};

struct Summary {
    uint64_t rows = 0;
    uint64_t csv_bytes = 0;
    uint64_t object_bytes = 0;
    uint64_t fractions_lost = 0;
    std::string first_fraction_lost;
};

Complaint pack_row(const OAK_ROW &row, uint64_t line, Packer *packer, ItemWriter *items) {
    OAK_BUFFER *out = items->begin_item();
    const OAK_RETCODE status = out != nullptr ? packer->pack(row, out) : eNOMEMORY;
    return status == sOKAY ? items->end_item()
                           : "line " + std::to_string(line) + ": " + status_text(status);
}

Complaint pack_rows(CsvReader *csv, RowBuilder *builder, Packer *packer, ItemWriter *items,
                    Summary *summary) {
    Progress progress(kTool, "rows");
    CsvReader::Outcome outcome = csv->next();
    for (; outcome == CsvReader::Outcome::record; outcome = csv->next()) {
        Complaint complaint = builder->build(csv->fields(), csv->line(), items->next_row());
        if (complaint.empty()) {
            complaint = pack_row(builder->row(), csv->line(), packer, items);
        }
        if (!complaint.empty()) {
            return complaint;
        }
        ++summary->rows;
        progress.step();
    }
    return outcome == CsvReader::Outcome::refused ? csv->complaint() : Complaint();
}

// Reads the header; an empty CSV has none.
Complaint read_header(CsvReader *csv, RowBuilder *builder) {
    switch (csv->next()) {
        case CsvReader::Outcome::record:
            return builder->prepare(csv->fields());
        case CsvReader::Outcome::refused:
            return csv->complaint();
        default:
            return "line 1: there is no header that names columns";
    }
}

// ---- The run ----------------------------------------------------------------

Complaint run(const Request &request, Summary *summary) {
    CatalogFile catalog;
    Complaint complaint = catalog.read(request.catalog);
    if (!complaint.empty()) {
        return complaint;
    }
    const SCH_TBL_INFO_C ti = catalog.table(request.table, &complaint);
    File file;
    if (complaint.empty()) {
        complaint = file.open(request.csv, OSL_OPEN_READ);
    }
    if (!complaint.empty()) {
        return complaint;
    }
    const std::string in_csv = std::string(shown_name(request.csv)) + ": ";
    CsvReader csv(
        [&](char *place, uint32_t count) { return osl_fileRead(file.handle(), place, count); });
    RowBuilder builder(ti);
    complaint = read_header(&csv, &builder);
    if (!complaint.empty()) {
        return in_csv + complaint;
    }
    Packer packer(request);
    if (const OAK_RETCODE status = packer.start(); status != sOKAY) {
        return status_text(status);
    }
    ItemWriter items;
    complaint = items.open(request.items);
    if (!complaint.empty()) {
        return complaint;
    }
    complaint = pack_rows(&csv, &builder, &packer, &items, summary);
    if (!complaint.empty()) {
        return in_csv + complaint;
    }
    summary->csv_bytes = csv.bytes_read();
    summary->object_bytes = items.object_bytes();
    summary->fractions_lost = builder.fractions_lost();
    summary->first_fraction_lost = builder.first_fraction_lost();
    return items.commit();
}

void show(const Summary &summary) {
    osl_log("%s: %s of CSV, %s in stored objects\n", counted(summary.rows, "row").c_str(),
            counted(summary.csv_bytes, "byte").c_str(),
            counted(summary.object_bytes, "byte").c_str());
}

int main_of(int argc, char **argv) {
    CommandLine line(argc, argv, kDescription, kOptions);
    if (line.exit_now()) {
        return line.exit_status();
    }
    const Request request = read_request(&line);
    if (line.exit_now()) {
        return line.exit_status();
    }
    Summary summary;
    const Complaint complaint = run(request, &summary);
    if (!complaint.empty()) {
        say(kTool, complaint);
        return kFailure;
    }
    if (summary.fractions_lost > 0) {
        say(kTool, counted(summary.fractions_lost, "field") +
                       " had digits behind the point that were dropped, the first in " +
                       summary.first_fraction_lost);
    }
    if (!line.quiet()) {
        show(summary);
    }
    return kSuccess;
}

} // namespace
} // namespace tools

int main(int argc, char **argv) {
    return tools::main_of(argc, argv);
}

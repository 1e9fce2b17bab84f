// oakunpack: from the stored objects of an item file back to the rows of a CSV
// file. What is damaged is told and passed over, and the exit status is 1.
#include "catalog_file.h"
#include "csv.h"
#include "item_file.h"
#include "row_reader.h"

namespace tools {
namespace {

constexpr char kTool[] = "oakunpack";
constexpr size_t kBlock = 1 << 18;

constexpr OAK_CMDLINE_OPT_A kOptions[] = {
    {"c", "catalog", "s=FILE", "The catalog with the table"},
    {"t", "table", "s=NAME", "The table whose rows these are"},
    {"ITEMS", nullptr, "#=ITEMS", "The item file; - for standard input"},
    {"CSV", nullptr, "?=CSV", "Where the rows go; standard output without it"},
    {nullptr, nullptr, nullptr, nullptr},
};

constexpr char kDescription[] =
    "Unpacks the rows of an item file to CSV, with a header that names the columns. NULL is\n"
    "an empty field, an empty text a quoted one. Items that are damaged are told and passed\n"
    "over; the exit status is 1 then.";

// ---- Where the rows go ------------------------------------------------------

// Why rows cannot go to the open file `name`: it is the item file, or another
// program holds it. Found out by locks, which only one of two handles on a file
// gets.
Complaint why_not_to(const char *name, const File &file, const File &items) {
    const bool has_items = osl_fileLock(items.handle()) == sOKAY;
    const bool in_use = osl_fileLock(file.handle()) == eFILEINUSE;
    OAK_IGNORE_STATUS(osl_fileUnlock(items.handle()), "closing unlocks as well");
    const bool is_items = has_items && in_use && osl_fileLock(file.handle()) == sOKAY;
    OAK_IGNORE_STATUS(osl_fileUnlock(file.handle()), "it may not be locked");
    if (is_items) {
        return std::string(name) + ": the rows cannot go to the item file itself";
    }
    return in_use ? std::string(name) + ": " + status_text(eFILEINUSE) : Complaint();
}

// The CSV, to a file or to standard output. A file that is not finished goes, or
// is left empty where it was there before.
class Destination {
  public:
    ~Destination() {
        if (file_) {
            empty_file();
            file_.close();
        }
        if (made_) {
            OAK_IGNORE_STATUS(osl_fileRemove(name_), "the failure before it is told");
        }
    }

    // `items` is the open item file, which must be another.
    Complaint open(const char *name, const File &items) {
        if (name == nullptr) {
            return {};
        }
        const bool made = osl_fileValidate(name) == eNOFILE;
        File file;
        if (Complaint complaint = file.open(name, OSL_OPEN_CREATE); !complaint.empty()) {
            return complaint;
        }
        if (Complaint complaint = why_not_to(name, file, items); !complaint.empty()) {
            return complaint;
        }
        name_ = name;
        made_ = made;
        file_ = std::move(file);
        empty_file();
        return {};
    }
    std::string &text() { return text_; }
    Complaint poll() { return text_.size() >= kBlock ? write() : Complaint(); }
    Complaint finish() {
        Complaint complaint = write();
        if (complaint.empty() && !file_) {
            complaint = output_.finish();
        }
        if (complaint.empty()) {
            file_.close();
            made_ = false;
        }
        return complaint;
    }

  private:
    // A device has no length and keeps it.
    void empty_file() {
        if (osl_fileLength(file_.handle()) > 0) {
            OAK_IGNORE_STATUS(osl_fileSetSize(file_.handle(), 0), "writing fails as well then");
        }
    }
    Complaint write() {
        Complaint complaint;
        if (!file_) {
            output_ << text_;
        } else if (osl_fileWrite(file_.handle(), text_.data(),
                                 static_cast<uint32_t>(text_.size())) != text_.size()) {
            complaint = std::string(name_) + ": " + status_text(eBADWRITE);
        }
        text_.clear();
        return complaint;
    }

    const char *name_ = nullptr;
    bool made_ = false;
    File file_;
    Output output_;
    std::string text_;
};

// ---- Rows -------------------------------------------------------------------

void append_header(const std::vector<Column> &columns, std::string *out) {
    for (const Column &column : columns) {
        *out += &column == columns.data() ? "" : ",";
        append_csv_field(out, column.name);
    }
    *out += '\n';
}

bool needs_no_quotes(ColumnKind kind) {
    return kind != ColumnKind::text && kind != ColumnKind::array;
}

// Appends one field; `work` is a text of the caller's to work in.
Complaint append_field(const RowReader &row, const Column &column, std::string *work,
                       std::string *out) {
    RowReader::State state = RowReader::State::null;
    OAK_VALUE value;
    OAK_RETCODE status = row.column(column, &state, &value);
    if (status == sOKAY && state == RowReader::State::elsewhere) {
        return std::string("column '") + column.name + "' has a value that lies outside the row";
    }
    if (status == sOKAY && state == RowReader::State::value) {
        const bool direct = needs_no_quotes(column.kind);
        work->clear();
        status = append_value_text(direct ? out : work, column, value);
        if (!direct) {
            append_csv_field(out, *work);
        }
    }
    return status == sOKAY ? Complaint()
                           : std::string("column '") + column.name + "': " + status_text(status);
}

// Appends a row, or nothing and why there is none.
Complaint append_row(const Item &item, RowReader *reader, std::string *work, std::string *out) {
    const OAK_RETCODE status = reader->read(item.object, item.row);
    if (status != sOKAY) {
        return status_text(status);
    }
    const size_t before = out->size();
    for (const Column &column : reader->columns()) {
        if (&column != reader->columns().data()) {
            *out += ',';
        }
        Complaint complaint = append_field(*reader, column, work, out);
        if (!complaint.empty()) {
            out->resize(before);
            return complaint;
        }
    }
    *out += '\n';
    return {};
}

// ---- The run ----------------------------------------------------------------

// What happens to a file whose items are read one after the other.
class Unpacking {
  public:
    Unpacking(const char *items, SCH_TBL_INFO_C ti) : name_(shown_name(items)), reader_(ti) {}

    bool is_damaged() const { return damaged_; }

    Complaint run(ItemReader *items, Destination *destination) {
        tell(items->read_header());
        append_header(reader_.columns(), &destination->text());
        Progress progress(kTool, "rows");
        std::string work;
        for (Item item; items->next(&item);) {
            Complaint damage = item.damage;
            if (damage.empty()) {
                damage = append_row(item, &reader_, &work, &destination->text());
            }
            if (!damage.empty()) {
                progress.clear();
                tell("item at " + std::to_string(item.place) + ": " + damage);
            }
            if (Complaint complaint = destination->poll(); !complaint.empty()) {
                return complaint;
            }
            progress.step();
        }
        tell(items->ending());
        return {};
    }

  private:
    void tell(const Complaint &damage) {
        if (!damage.empty()) {
            damaged_ = true;
            say(kTool, name_ + ": " + damage);
        }
    }

    std::string name_;
    RowReader reader_;
    bool damaged_ = false;
};

Complaint run(const CommandLine &line, const char *catalog_name, const char *table, bool *damaged) {
    CatalogFile catalog;
    Complaint complaint = catalog.read(catalog_name);
    if (!complaint.empty()) {
        return complaint;
    }
    const SCH_TBL_INFO_C ti = catalog.table(table, &complaint);
    File file;
    if (complaint.empty()) {
        complaint = file.open(line.value("ITEMS"), OSL_OPEN_READ);
    }
    Destination destination;
    if (complaint.empty()) {
        complaint = destination.open(line.value("CSV"), file);
    }
    if (!complaint.empty()) {
        return complaint;
    }
    ItemReader items(item_source(file.handle()));
    Unpacking unpacking(line.value("ITEMS"), ti);
    complaint = unpacking.run(&items, &destination);
    *damaged = unpacking.is_damaged();
    return complaint.empty() ? destination.finish() : complaint;
}

int main_of(int argc, char **argv) {
    CommandLine line(argc, argv, kDescription, kOptions);
    if (line.exit_now()) {
        return line.exit_status();
    }
    const char *catalog = line.required("catalog");
    const char *table = line.required("table");
    if (line.exit_now()) {
        return line.exit_status();
    }
    bool damaged = false;
    const Complaint complaint = run(line, catalog, table, &damaged);
    if (!complaint.empty()) {
        say(kTool, complaint);
    }
    return complaint.empty() && !damaged ? kSuccess : kFailure;
}

} // namespace
} // namespace tools

int main(int argc, char **argv) {
    return tools::main_of(argc, argv);
}

#pragma once
// An ad-hoc statement: text lines joined into one statement, translated by the dialect adapter.
// Exactly one statement runs per call. Open reads a select's rows; ExecSQL runs anything else.
#include "store/Dataset.h"

namespace store {

class Database;

class Query : public Dataset {
public:
    explicit Query(Database& database);
    ~Query() override;

    Database& database() const { return *database_; }

    // The statement text, as lines.
    void setSql(const std::string& text); // the whole text, one line
    void addLine(const std::string& line);
    void clearSql();
    const std::vector<std::string>& sqlLines() const { return lines_; }
    std::string text() const;

    void open() override;
    void execSQL();
    int rowsAffected() const { return rowsAffected_; }

    void first() override;
    void last() override;
    void next() override;
    void prior() override;
    int recordCount() override;
    int recNo() override;

    std::string describe() const override;

private:
    void moveTo(int index);

    Database* database_;
    std::vector<std::string> lines_;
    std::vector<std::vector<Value>> rows_;
    int index_ = -1;
    int rowsAffected_ = 0;
};

} // namespace store

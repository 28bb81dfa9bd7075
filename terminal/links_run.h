#pragma once

#include "shell/link_rows.h"
#include "terminal/car_run.h"

namespace brivant {

// The command "links": the adapters that are known and around, which of them is used, and the search for
// one. Begins no operation on a car.
class links_run : public car_run {
public:
    explicit links_run(program_core& its_core);

    // Why the words after the command cannot be carried out, "" when they can.
    static QString wrong_words(const QStringList& words);

    void start() override;

protected:
    adapter_finder finder;

private:
    void list();
    void find();
    void follow();
    QString change(const QString& what, const QString& word);
    void print_links(bool done);

    bluetooth_service service;
    links_around around;
    QString told;
};

// Looks for an adapter and, where exactly one answers, leads the link there for this run (--find).
class find_run : public terminal_run {
public:
    explicit find_run(program_core& its_core);

    void start() override;

private:
    void take();

    adapter_finder finder;
    QString told;
};

} // namespace brivant

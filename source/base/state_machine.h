// Internal to the text scanners: one way to write a state machine as a table, and one
// way to walk it. Rests on nothing; used by convert_scan.cpp.
//
// Law: a machine is written as states of entries, searched in order, and closed by an
// entry that matches anything. Before anything runs, the compiler turns it into a dense
// table over the classes of characters that its entries tell apart, and proves on the
// way that no step leaves the text, that no chain of steps stands still, and that every
// next state is one of the table or past its end.
//
// A step that consumes a character and returns to its own state goes on to do so for the
// next one: the walk hands such a run of characters to the rule in one piece.
#ifndef STATE_MACHINE_H
#define STATE_MACHINE_H

#include <cstddef>
#include <cstdint>

#include "oakretcodetypes.h"

// One entry of a state.
struct B_ACTION {
    char symbol;    // what it matches: a plain character, or one of the three below
    int16_t ruleno; // what to do, 0 for nothing
    int16_t shift;  // 1 consumes the character, 0 looks at it again in the next state
    int16_t state;  // the next state; none of the table's ends the walk
};

constexpr char symbolEnd = 0;   // the terminating zero byte
constexpr char symbolDigit = 1; // a decimal digit
constexpr char symbolOther = 2; // anything; closes the state

// A machine's table and what the end of the text means in a state that has no entry
// for it: the state's last entry where `atEnd` is null, else what `atEnd` says.
template <size_t N>
struct StateTable {
    const B_ACTION *const (&states)[N];
    B_ACTION (*atEnd)(size_t state);
};

// One cell of the dense table.
struct MachineStep {
    uint8_t rule;
    uint8_t shift;
    uint8_t state;

    constexpr bool operator==(const MachineStep &) const = default;
};

template <size_t States, size_t Classes>
struct Machine {
    static constexpr size_t stateCount = States;
    uint8_t classOf[256]; // 0 is the end of the text
    MachineStep steps[States][Classes];
};

namespace state_machine {

constexpr size_t classEnd = 0;
constexpr size_t classOther = 1;

constexpr bool isDigit(char ch) {
    return ch >= '0' && ch <= '9';
}

// Characters by class: each plain character of the table has one, and the digits one
// together if the table names them.
struct Classes {
    uint8_t of[256];
    char sample[256]; // a character of each class
    size_t count;
};

constexpr void addClass(Classes &classes, char symbol) {
    const auto number = static_cast<uint8_t>(classes.count);
    if (symbol == symbolDigit) {
        if (classes.of[static_cast<uint8_t>('0')] != classOther)
            return;
        for (char ch = '0'; ch <= '9'; ++ch)
            classes.of[static_cast<uint8_t>(ch)] = number;
        symbol = '0';
    } else {
        if (classes.of[static_cast<uint8_t>(symbol)] != classOther)
            return;
        classes.of[static_cast<uint8_t>(symbol)] = number;
    }
    classes.sample[classes.count++] = symbol;
}

template <size_t N>
constexpr Classes classify(const StateTable<N> &table) {
    Classes classes{};
    for (uint8_t &number : classes.of)
        number = classOther;
    classes.of[0] = classEnd;
    classes.sample[classOther] = symbolOther;
    classes.count = 2;
    for (const B_ACTION *entry : table.states)
        for (; entry->symbol != symbolOther; ++entry)
            if (entry->symbol != symbolEnd)
                addClass(classes, entry->symbol);
    return classes;
}

constexpr bool matches(const B_ACTION &entry, char ch) {
    if (entry.symbol == symbolOther)
        return true;
    if (entry.symbol == symbolDigit)
        return isDigit(ch);
    return entry.symbol == ch && ch != symbolOther;
}

template <size_t N>
constexpr B_ACTION findEntry(const StateTable<N> &table, size_t state, char ch) {
    const B_ACTION *entry = table.states[state];
    while (!matches(*entry, ch))
        ++entry;
    const bool unforeseenEnd = ch == symbolEnd && entry->symbol == symbolOther;
    return unforeseenEnd && table.atEnd != nullptr ? table.atEnd(state) : *entry;
}

// Whether the character is consumed, or the walk ended, within so many steps as there
// are states: a longer chain would have come back to where it was.
template <size_t States, size_t ClassCount>
constexpr bool moves(const Machine<States, ClassCount> &machine, size_t state, size_t cls) {
    for (size_t i = 0; i <= States; ++i) {
        const MachineStep &step = machine.steps[state][cls];
        if (step.shift != 0 || step.state >= States)
            return true;
        state = step.state;
    }
    return false;
}

template <size_t States, size_t ClassCount>
constexpr bool isSound(const Machine<States, ClassCount> &machine) {
    for (size_t state = 0; state < States; ++state) {
        if (machine.steps[state][classEnd].shift != 0)
            return false;
        for (size_t cls = 0; cls < ClassCount; ++cls)
            if (!moves(machine, state, cls))
                return false;
    }
    return true;
}

template <const auto &table>
consteval auto compile() {
    constexpr size_t states = sizeof table.states / sizeof table.states[0];
    constexpr Classes classes = classify(table);
    Machine<states, classes.count> machine{};
    for (size_t ch = 0; ch < 256; ++ch)
        machine.classOf[ch] = classes.of[ch];
    for (size_t state = 0; state < states; ++state)
        for (size_t cls = 0; cls < classes.count; ++cls) {
            const B_ACTION entry = findEntry(table, state, classes.sample[cls]);
            machine.steps[state][cls] = {static_cast<uint8_t>(entry.ruleno),
                                         static_cast<uint8_t>(entry.shift),
                                         static_cast<uint8_t>(entry.state)};
        }
    return machine;
}

} // namespace state_machine

// How far a run goes: over characters of one class, which is the quickest test and right
// where the long runs are digits; or over all that call for the same step, which pays
// where the long runs are words.
enum class Run { ofOneClass, ofOneStep };

// The length of the run at the front of `text`, whose first step repeats.
template <Run extent, class Row>
size_t runLength(const Row &row, const uint8_t (&classOf)[256], const char *text) {
    const uint8_t cls = classOf[static_cast<uint8_t>(*text)];
    size_t length = 1;
    for (;; ++length) {
        const uint8_t next = classOf[static_cast<uint8_t>(text[length])];
        if (extent == Run::ofOneClass ? next != cls : row[next] != row[cls])
            return length;
    }
}

// Walks a machine over a terminated text, from state 0 until the next state is none of
// the table. `rules.perform(rule, run, length)` does what a step asks for with the
// characters that it is about, one at least; its failure ends the walk.
template <Run extent = Run::ofOneClass, class AnyMachine, class Rules>
OAK_RETCODE walkMachine(const AnyMachine &machine, const char *text, Rules &rules) {
    size_t state = 0;
    do {
        const auto &row = machine.steps[state];
        const MachineStep step = row[machine.classOf[static_cast<uint8_t>(*text)]];
        const bool repeats = step.shift != 0 && step.state == state;
        const size_t length = repeats ? runLength<extent>(row, machine.classOf, text) : 1;
        if (step.rule != 0) {
            const OAK_RETCODE rc = rules.perform(step.rule, text, length);
            if (rc != sOKAY)
                return rc;
        }
        if (step.shift != 0)
            text += length;
        state = step.state;
    } while (state < AnyMachine::stateCount);
    return sOKAY;
}

#endif

// The state tables of the text scanners as text, a line a state: the state's number, then
// its entries in order, each with symbol, rule if any, shift or stay, and the next state.
// digit, end and other are classes of characters; space, tab, newline, quote and
// apostrophe are characters. Read by the plain walker of convert_scan_test.cpp.
#ifndef CONVERT_SCAN_TABLES_H
#define CONVERT_SCAN_TABLES_H

namespace oaktest {

inline const char *const kNumberTable = R"~(
0 | +: shift, 1; -: rule 1, shift, 1; digit: stay, 1; .: shift, 2; space: shift, 0; tab: shift, 0; newline: shift, 0; other: rule 2, stay, done
1 | digit: rule 3, shift, 1; .: shift, 2; e: shift, 3; E: shift, 3; end: stay, done; other: rule 2, stay, done
2 | digit: rule 4, shift, 2; e: shift, 3; E: shift, 3; end: stay, done; other: rule 2, stay, done
3 | +: shift, 4; -: rule 5, shift, 4; digit: stay, 4; other: rule 2, stay, done
4 | digit: rule 6, shift, 4; end: rule 7, stay, done; other: rule 2, stay, done
)~";

inline const char *const kDateTable = R"~(
0 | digit: stay, 13; d: shift, 1; D: shift, 1; t: shift, 4; T: shift, 4; space: shift, 0; apostrophe: shift, 13; quote: shift, 13; @: shift, 12; other: rule 1, stay, done
1 | a: shift, 2; A: shift, 2; other: rule 1, stay, done
2 | t: shift, 3; T: shift, 3; other: rule 1, stay, done
3 | e: shift, 12; E: shift, 12; other: rule 1, stay, done
4 | i: shift, 5; I: shift, 5; other: rule 1, stay, done
5 | m: shift, 6; M: shift, 6; other: rule 1, stay, done
6 | e: shift, 7; E: shift, 7; other: rule 1, stay, done
7 | s: shift, 8; S: shift, 8; other: rule 1, stay, done
8 | t: shift, 9; T: shift, 9; other: rule 1, stay, done
9 | a: shift, 10; A: shift, 10; other: rule 1, stay, done
10 | m: shift, 11; M: shift, 11; other: rule 1, stay, done
11 | p: shift, 12; P: shift, 12; other: rule 1, stay, done
12 | space: shift, 12; apostrophe: shift, 13; quote: shift, 13; other: rule 1, stay, done
13 | digit: rule 2, shift, 14; other: rule 1, stay, done
14 | digit: rule 2, shift, 15; other: rule 1, stay, done
15 | digit: rule 2, shift, 16; other: rule 1, stay, done
16 | digit: rule 2, shift, 17; other: rule 1, stay, done
17 | -: shift, 18; other: rule 1, stay, done
18 | digit: rule 3, shift, 19; other: rule 1, stay, done
19 | digit: rule 3, shift, 20; -: shift, 21; other: rule 1, stay, done
20 | -: shift, 21; other: rule 1, stay, done
21 | digit: rule 4, shift, 22; other: rule 1, stay, done
22 | digit: rule 4, shift, 23; apostrophe: shift, done; quote: shift, done; other: stay, done
23 | apostrophe: shift, done; quote: shift, done; other: stay, done
)~";

inline const char *const kEscapeTable = R"~(
0 | -: rule 1, shift, 1; {: shift, 22; quote: rule 2, shift, 39; apostrophe: rule 2, shift, 40; end: rule 2, stay, done; c: rule 2, shift, 41; C: rule 2, shift, 41; other: rule 2, shift, 0
1 | -: rule 1, shift, 2; other: rule 3, stay, 0
2 | (: rule 1, shift, 3; other: rule 3, stay, 0
3 | *: rule 6, shift, 4; other: rule 3, stay, 0
4 | v: shift, 5; V: shift, 5; space: shift, 4; other: rule 4, stay, done
5 | e: shift, 6; E: shift, 6; other: rule 4, stay, done
6 | n: shift, 7; N: shift, 7; other: rule 4, stay, done
7 | d: shift, 8; D: shift, 8; other: rule 4, stay, done
8 | o: shift, 9; O: shift, 9; other: rule 4, stay, done
9 | r: shift, 10; R: shift, 10; other: rule 4, stay, done
10 | (: shift, 11; space: shift, 10; other: rule 4, stay, done
11 | ): shift, 12; end: rule 4, stay, done; other: shift, 11
12 | ,: shift, 13; space: shift, 12; other: rule 4, stay, done
13 | p: shift, 14; P: shift, 14; space: shift, 13; other: rule 4, stay, done
14 | r: shift, 15; R: shift, 15; other: rule 4, stay, done
15 | o: shift, 16; O: shift, 16; other: rule 4, stay, done
16 | d: shift, 17; D: shift, 17; other: rule 4, stay, done
17 | u: shift, 18; U: shift, 18; other: rule 4, stay, done
18 | c: shift, 19; C: shift, 19; other: rule 4, stay, done
19 | t: shift, 20; T: shift, 20; other: rule 4, stay, done
20 | (: shift, 21; space: shift, 20; other: rule 4, stay, done
21 | ): shift, 22; end: rule 4, stay, done; other: shift, 21
22 | d: rule 5, shift, 24; t: shift, 23; f: shift, 26; o: shift, 28; c: rule 1, shift, 30; e: rule 2, shift, 51; space: shift, 22; newline: shift, 22; other: rule 4, stay, done
23 | space: rule 5, shift, 24; s: rule 5, shift, 24; other: rule 4, stay, done
24 | space: shift, 24; apostrophe: rule 2, shift, 25; other: rule 4, stay, done
25 | apostrophe: rule 2, shift, 33; end: rule 4, stay, done; other: rule 2, shift, 25
26 | n: shift, 27; other: rule 4, stay, done
27 | space: rule 2, shift, 33; other: rule 4, stay, done
28 | j: shift, 29; other: rule 4, stay, done
29 | space: rule 2, shift, 33; other: rule 4, stay, done
30 | a: rule 1, shift, 31; other: rule 4, stay, done
31 | l: rule 1, shift, 32; other: rule 4, stay, done
32 | l: rule 1, shift, 38; other: rule 4, stay, done
33 | end: rule 4, stay, done; other: rule 6, stay, 34
34 | }: rule 6, shift, 0; *: rule 1, shift, 35; end: rule 4, stay, done; other: rule 2, shift, 34
35 | ): rule 1, shift, 36; end: rule 4, stay, done; other: rule 3, stay, 34
36 | -: rule 1, shift, 37; end: rule 4, stay, done; other: rule 3, stay, 34
37 | -: rule 6, shift, 0; end: rule 4, stay, done; other: rule 3, stay, 34
38 | space: rule 3, stay, 27; other: rule 4, stay, done
39 | quote: rule 2, shift, 0; end: rule 4, stay, done; other: rule 2, shift, 39
40 | apostrophe: rule 2, shift, 0; end: rule 4, stay, done; other: rule 2, shift, 40
41 | _: rule 2, shift, 42; end: rule 2, stay, done; other: rule 2, shift, 0
42 | d: rule 2, shift, 43; D: rule 2, shift, 43; end: rule 2, stay, done; other: rule 2, shift, 0
43 | a: rule 2, shift, 44; A: rule 2, shift, 44; end: rule 2, stay, done; other: rule 2, shift, 0
44 | t: rule 2, shift, 45; T: rule 2, shift, 45; end: rule 2, stay, done; other: rule 2, shift, 0
45 | a: rule 2, shift, 46; A: rule 2, shift, 46; end: rule 2, stay, done; other: rule 2, shift, 0
46 | [: rule 2, shift, 47; space: rule 2, shift, 46; other: stay, 48
47 | ]: rule 2, shift, 46; other: rule 2, shift, 47
48 | space: rule 2, shift, 48; s: rule 2, shift, 49; S: rule 2, shift, 49; other: rule 2, shift, 0
49 | t: rule 2, shift, 50; T: rule 2, shift, 50; other: rule 2, shift, 0
50 | {: rule 2, shift, 0; end: rule 2, stay, 0; other: rule 2, shift, 50
51 | s: rule 2, shift, 52; other: rule 4, stay, done
52 | c: rule 2, shift, 53; other: rule 4, stay, done
53 | a: rule 2, shift, 54; other: rule 4, stay, done
54 | p: rule 2, shift, 55; other: rule 4, stay, done
55 | e: rule 2, shift, 56; other: rule 4, stay, done
56 | space: rule 2, shift, 56; apostrophe: rule 2, shift, 57; other: rule 4, stay, done
57 | other: rule 2, shift, 58
58 | apostrophe: rule 2, shift, 34; space: shift, 58; other: rule 4, stay, done
)~";

} // namespace oaktest

#endif

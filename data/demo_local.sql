-- Demo content of the local database: a small wire-cut vocabulary (value types, commands,
-- syntaxes) and one template for fixture FX-100. Run after schema_local.sql.

-- Value types. Type: 0 no value, 1/2 integer, 3 real, 4/5 text, 6 file name, 7 short text,
-- 8 option (check box, "1" when ticked). 3102 is the running workpiece number.
INSERT INTO ValueType VALUES (0,    0, '(no value)', NULL);
INSERT INTO ValueType VALUES (1001, 1, 'Repeat Count', '1');
INSERT INTO ValueType VALUES (1002, 2, 'Offset Number', '1');
INSERT INTO ValueType VALUES (2001, 3, 'X Position', '0');
INSERT INTO ValueType VALUES (2002, 3, 'Y Position', '0');
INSERT INTO ValueType VALUES (2003, 3, 'U Position (taper)', '0');
INSERT INTO ValueType VALUES (2004, 3, 'V Position (taper)', '0');
INSERT INTO ValueType VALUES (2005, 3, 'Dwell Time (seconds)', '0.5');
INSERT INTO ValueType VALUES (2011, 3, 'Argument A', '0');
INSERT INTO ValueType VALUES (2012, 3, 'Argument B', '0');
INSERT INTO ValueType VALUES (2013, 3, 'Argument C', '0');
INSERT INTO ValueType VALUES (2021, 3, 'Variable Value', '0');
INSERT INTO ValueType VALUES (3102, 1, 'Workpiece Number', NULL);
INSERT INTO ValueType VALUES (4001, 4, 'Comment Text', NULL);
INSERT INTO ValueType VALUES (5001, 5, 'Message Text', 'CHECK WIRE');
INSERT INTO ValueType VALUES (6001, 6, 'Sub-program File', '[P4]');
INSERT INTO ValueType VALUES (6002, 6, 'Macro Program File', '9010');
INSERT INTO ValueType VALUES (7001, 7, 'Variable Number', '500');
INSERT INTO ValueType VALUES (8001, 8, 'Include File', NULL);
INSERT INTO ValueType VALUES (8002, 8, 'Continue on Next Line', '0');

-- Commands. Default_Syntax counts from 0; null means no global default syntax.
INSERT INTO Commands VALUES ('ACK', 'Operator stop',
    'Stops the program for the operator (M00), or only when optional stop is on (M01); a note can be added.', 1);
INSERT INTO Commands VALUES ('ARGC', 'Macro argument C',
    'Adds argument C to the macro call above it.', 0);
INSERT INTO Commands VALUES ('COMMENT', 'Comment',
    'A comment line, or an operator message shown on the CNC screen.', 0);
INSERT INTO Commands VALUES ('FLUSH', 'Flushing',
    'Switches the flushing of the machining area on or off.', 0);
INSERT INTO Commands VALUES ('G00', 'Rapid positioning',
    'Moves the wire guides at rapid rate to a position, e.g. the next start hole.', 0);
INSERT INTO Commands VALUES ('G04', 'Dwell',
    'Waits for a given time in seconds.', 0);
INSERT INTO Commands VALUES ('G54', 'Work coordinate system',
    'Selects one of the work coordinate systems G54 to G59.', 0);
INSERT INTO Commands VALUES ('G65', 'Macro call',
    'Calls a custom macro program once, passing arguments.', 0);
INSERT INTO Commands VALUES ('G90', 'Absolute / incremental',
    'Selects absolute (G90) or incremental (G91) programming.', 0);
INSERT INTO Commands VALUES ('G92', 'Set position',
    'Sets the current position of the wire in the work coordinate system.', 0);
INSERT INTO Commands VALUES ('M98', 'Sub-program call',
    'Calls a sub-program, which can travel with the master program as an included file.', 0);
INSERT INTO Commands VALUES ('NOTE', 'Stop note',
    'A note for the operator, added to a program stop.', NULL);
INSERT INTO Commands VALUES ('OFFSET', 'Wire offset',
    'Wire diameter compensation to the left (G41) or right (G42), or its cancel (G40).', NULL);
INSERT INTO Commands VALUES ('PIECE', 'Workpiece counter',
    'Numbers the workpieces of the pallet for the cutting macro.', 0);
INSERT INTO Commands VALUES ('REPEAT', 'Repeat count',
    'Repeats the sub-program called above it.', 0);
INSERT INTO Commands VALUES ('SEP', 'Workpiece point',
    'Start point of a workpiece for the cell.', 0);
INSERT INTO Commands VALUES ('UV', 'Taper axes',
    'Adds the taper axes U and V to the position set above it.', 0);
INSERT INTO Commands VALUES ('VAR', 'Macro variable',
    'Sets a common macro variable.', 0);
INSERT INTO Commands VALUES ('WIRE', 'Wire feed',
    'Threads or cuts the wire with the automatic wire feed.', 0);

-- Syntaxes: Code, Item (from 1), Command ('ALL' or the parent of a sub-item), Syntax, Type,
-- Mask, Description, Value_Type_1 .. Value_Type_6.
-- Type 1 value syntax, 2 selection, 3 value closed, 4 selection closed, other: plain text.
-- An option (8001 / 8002) in the slot after the mask's own values flags the line:
-- 8002 joins the line with the next one, 8001 makes the called file travel with the job.
INSERT INTO Syntax VALUES ('ACK', 1, 'ALL', 'M00', 2, 'M00',
    'Program stop', 0, 0, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('ACK', 2, 'ALL', 'M01', 2, 'M01',
    'Optional stop', 0, 0, 0, 0, 0, 0);

INSERT INTO Syntax VALUES ('ARGC', 1, 'G65', 'C__', 1, ' C%+0.000f',
    'Macro argument C', 2013, 0, 0, 0, 0, 0);

INSERT INTO Syntax VALUES ('COMMENT', 1, 'ALL', '(comment)', 1, '(%s)',
    'Comment line', 4001, 8002, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('COMMENT', 2, 'ALL', '(MSG,message)', 1, '(MSG,%s)',
    'Operator message shown on the CNC screen', 5001, 8002, 0, 0, 0, 0);

INSERT INTO Syntax VALUES ('FLUSH', 1, 'ALL', 'M80', 5, 'M80',
    'Flushing on', 0, 0, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('FLUSH', 2, 'ALL', 'M81', 5, 'M81',
    'Flushing off', 0, 0, 0, 0, 0, 0);

INSERT INTO Syntax VALUES ('G00', 1, 'ALL', 'G00 X__ Y__', 3, 'G00 X%+0.000f Y%+0.000f',
    'Rapid move to a position', 2001, 2002, 8002, 0, 0, 0);

INSERT INTO Syntax VALUES ('G04', 1, 'ALL', 'G04 X__', 3, 'G04 X%0.0##f',
    'Dwell for a time in seconds', 2005, 8002, 0, 0, 0, 0);

INSERT INTO Syntax VALUES ('G54', 1, 'ALL', 'G54', 4, 'G54',
    'Work coordinate system 1', 0, 0, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('G54', 2, 'ALL', 'G55', 4, 'G55',
    'Work coordinate system 2', 0, 0, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('G54', 3, 'ALL', 'G56', 4, 'G56',
    'Work coordinate system 3', 0, 0, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('G54', 4, 'ALL', 'G57', 4, 'G57',
    'Work coordinate system 4', 0, 0, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('G54', 5, 'ALL', 'G58', 4, 'G58',
    'Work coordinate system 5', 0, 0, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('G54', 6, 'ALL', 'G59', 4, 'G59',
    'Work coordinate system 6', 0, 0, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('G54', 7, 'ALL', 'G54.1 P1', 4, 'G54.1 P1',
    'Additional work coordinate system 1', 0, 0, 0, 0, 0, 0);

INSERT INTO Syntax VALUES ('G65', 1, 'ALL', 'G65 P____ A__ B__', 1, 'G65 P%.4d A%+0.000f B%+0.000f',
    'Macro call with arguments A and B (argument C as sub-item)', 6002, 2011, 2012, 8001, 0, 0);
INSERT INTO Syntax VALUES ('G65', 2, 'ALL', 'G65 P____', 1, 'G65 P%.4d',
    'Macro call without arguments', 6002, 8001, 0, 0, 0, 0);

INSERT INTO Syntax VALUES ('G90', 1, 'ALL', 'G90', 0, 'G90',
    'Absolute programming', 8002, 0, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('G90', 2, 'ALL', 'G91', 0, 'G91',
    'Incremental programming', 8002, 0, 0, 0, 0, 0);

INSERT INTO Syntax VALUES ('G92', 1, 'ALL', 'G92 X__ Y__', 1, 'G92 X%+0.000f Y%+0.000f',
    'Set position (taper axes as sub-item)', 2001, 2002, 8002, 0, 0, 0);
INSERT INTO Syntax VALUES ('G92', 2, 'ALL', 'G92 X__ Y__ U__ V__', 3,
    'G92 X%+0.000f Y%+0.000f U%+0.000f V%+0.000f',
    'Set position with the taper axes', 2001, 2002, 2003, 2004, 8002, 0);

INSERT INTO Syntax VALUES ('M98', 1, 'ALL', 'M98 P____', 1, 'M98 P%.4d',
    'Sub-program call (repeat count as sub-item)', 6001, 8001, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('M98', 2, 'ALL', 'M98 P____ L__', 3, 'M98 P%.4d L%d',
    'Sub-program call repeated L times', 6001, 1001, 8001, 0, 0, 0);

INSERT INTO Syntax VALUES ('NOTE', 1, 'ALL', ' (CHECK WIRE)', 2, ' (CHECK WIRE)',
    'Ask the operator to check the wire', 0, 0, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('NOTE', 2, 'ALL', ' (REMOVE SLUG)', 2, ' (REMOVE SLUG)',
    'Ask the operator to remove the slug', 0, 0, 0, 0, 0, 0);

INSERT INTO Syntax VALUES ('OFFSET', 1, 'ALL', 'G41 D__', 3, 'G41 D%.2d',
    'Wire offset to the left', 1002, 8002, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('OFFSET', 2, 'ALL', 'G42 D__', 3, 'G42 D%.2d',
    'Wire offset to the right', 1002, 8002, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('OFFSET', 3, 'ALL', 'G40', 0, 'G40',
    'Cancel the wire offset', 8002, 0, 0, 0, 0, 0);

INSERT INTO Syntax VALUES ('PIECE', 1, 'ALL', '#501=__', 3, '#501=%d',
    'Workpiece number for the cutting macro, counted on from the one before', 3102, 0, 0, 0, 0, 0);

INSERT INTO Syntax VALUES ('REPEAT', 1, 'M98', 'L__', 1, ' L%d',
    'Number of repetitions', 1001, 0, 0, 0, 0, 0);

INSERT INTO Syntax VALUES ('SEP', 1, 'ALL', 'SEP X__ Y__', 3, 'SEP X%+0.000f Y%+0.000f',
    'Workpiece start point given by hand', 2001, 2002, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('SEP', 2, 'ALL', 'SEP', 0, 'SEP',
    'Workpiece start point from the program', 0, 0, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('SEP', 3, 'ALL', 'SEP AUTO', 0, 'SEP AUTO',
    'Workpiece start point from the fixture points', 0, 0, 0, 0, 0, 0);

INSERT INTO Syntax VALUES ('UV', 1, 'G92', 'U__ V__', 1, ' U%+0.000f V%+0.000f',
    'Taper axes U and V', 2003, 2004, 0, 0, 0, 0);

INSERT INTO Syntax VALUES ('VAR', 1, 'ALL', '#___=__', 3, '#%s=%0.000f',
    'Set a common macro variable', 7001, 2021, 0, 0, 0, 0);

INSERT INTO Syntax VALUES ('WIRE', 1, 'ALL', 'M60', 4, 'M60',
    'Thread the wire', 0, 0, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('WIRE', 2, 'ALL', 'M20', 4, 'M20',
    'Cut the wire', 0, 0, 0, 0, 0, 0);
INSERT INTO Syntax VALUES ('WIRE', 3, 'ALL', 'M21', 4, 'M21',
    'Cut and rethread the wire', 0, 0, 0, 0, 0, 0);

-- Demo template for fixture FX-100: Header, three workpieces, Footer.
INSERT INTO TemplateName VALUES (1, 'FX-100', 'Demo wire-cut plate', 1, False);

-- Section rows carry only Template_ID, Item, Node_Level and Code.
-- Command rows: Syntax is the index from 0 among the code's syntaxes, -1 for the default.
INSERT INTO TemplateData VALUES (1,  0, 0, 'HDR', NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL);
INSERT INTO TemplateData VALUES (1,  1, 1, 'COMMENT', 0, 'DEMO WIRE-CUT PLATE', '0', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1,  2, 1, 'G90', 0, '1', '', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1,  3, 1, 'G54', -1, '', '', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1,  4, 1, 'WIRE', 0, '', '', '', '', '', '', '', True, 0);
INSERT INTO TemplateData VALUES (1,  5, 1, 'VAR', 0, '510', '0.125', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1,  6, 1, 'M98', 0, '[P4]', '0', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1,  7, 0, 'WRK', NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL);
INSERT INTO TemplateData VALUES (1,  8, 1, 'PIECE', -1, '', '', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1,  9, 1, 'G92', 0, '10', '5', '0', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 10, 2, 'UV', 0, '0.5', '-0.5', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 11, 1, 'G04', -1, '', '', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 12, 1, 'M98', 1, '1001', '2', '0', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 13, 0, 'WRK', NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL);
INSERT INTO TemplateData VALUES (1, 14, 1, 'PIECE', -1, '', '', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 15, 1, 'OFFSET', 0, '2', '1', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 16, 1, 'G00', 0, '60', '5', '0', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 17, 1, 'G65', 0, '9010', '1.5', '-2', '0', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 18, 2, 'ARGC', 0, '0.25', '', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 19, 0, 'WRK', NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL);
INSERT INTO TemplateData VALUES (1, 20, 1, 'PIECE', -1, '', '', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 21, 1, 'G92', 1, '110', '5', '0.5', '-0.5', '0', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 22, 2, 'UV', -1, '', '', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 23, 1, 'M98', 0, '1002', '0', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 24, 2, 'REPEAT', 0, '3', '', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 25, 0, 'FTR', NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL);
INSERT INTO TemplateData VALUES (1, 26, 1, 'FLUSH', 1, '', '', '', '', '', '', '', False, 1);
INSERT INTO TemplateData VALUES (1, 27, 1, 'ACK', 1, '', '', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 28, 2, 'NOTE', 0, '', '', '', '', '', '', '', False, 0);
INSERT INTO TemplateData VALUES (1, 29, 1, 'G00', -1, '', '', '', '', '', '', '', False, 0);

-- Local defaults of template 1: a dwell value and a default syntax (G55) for G54.
INSERT INTO TemplateDefaults VALUES (1, '2005', '2.5');
INSERT INTO TemplateDefaults VALUES (1, 'G54', '2');

-- Adjusted points of the three workpieces of FX-100.
INSERT INTO FixturePoints VALUES ('FX-100', 1, 10.0, 5.0);
INSERT INTO FixturePoints VALUES ('FX-100', 2, 60.0, 5.0);
INSERT INTO FixturePoints VALUES ('FX-100', 3, 110.0, 5.0);

-- Demo content of the shared database: one cell with a FANUC Robocut, its fixtures and
-- auxiliary baskets. Run after schema_shared.sql.

INSERT INTO FixtureList VALUES ('FX-100', 25.0, 'Wire-cut plate fixture, three pieces');
INSERT INTO FixtureList VALUES ('FX-200', 40.0, 'Vice fixture, two pieces');
INSERT INTO FixtureList VALUES ('FX-300', 12.5, 'Thin plate fixture, four pieces');

-- Cell 1 lists its units in the Unit_Number 0 rows: Item is the unit number, Value the
-- unit type. Each unit's settings follow under its own Unit_Number.
INSERT INTO Config VALUES (1, 0, 'Unit', '1', 'Robot');
INSERT INTO Config VALUES (1, 0, 'Unit', '2', 'FANUC Robocut');
INSERT INTO Config VALUES (1, 0, 'Unit', '3', 'Washer');

INSERT INTO Config VALUES (1, 1, 'Unit', 'Machine Type', 'Robot');
INSERT INTO Config VALUES (1, 1, 'Unit', 'Machine Name', 'Loading robot');
INSERT INTO Config VALUES (1, 1, 'Unit', 'Display Number', '1');

INSERT INTO Config VALUES (1, 2, 'Unit', 'Machine Type', 'FANUC Robocut');
INSERT INTO Config VALUES (1, 2, 'Unit', 'Machine Name', 'Robocut C400');
INSERT INTO Config VALUES (1, 2, 'Unit', 'Display Number', '2');
INSERT INTO Config VALUES (1, 2, 'Unit', 'Host', '127.0.0.1');
INSERT INTO Config VALUES (1, 2, 'Unit', 'Port', '8193');

INSERT INTO Config VALUES (1, 3, 'Unit', 'Machine Type', 'Washer');
INSERT INTO Config VALUES (1, 3, 'Unit', 'Machine Name', 'Parts washer');
INSERT INTO Config VALUES (1, 3, 'Unit', 'Display Number', '3');

INSERT INTO Config VALUES (1, 0, 'Cell', 'Name', 'Wire-cut cell 1');

-- Auxiliary baskets; Basket_Full is true for a loaded basket.
INSERT INTO BasketList VALUES (1, False);
INSERT INTO BasketList VALUES (2, True);
INSERT INTO BasketList VALUES (3, False);
INSERT INTO BasketList VALUES (7, True);
INSERT INTO BasketList VALUES (12, False);

-- JobList and JobQueue start empty.

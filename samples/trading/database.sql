-- The sample's data: the same rows on every machine, made without chance.
PRAGMA foreign_keys = ON;
BEGIN;

CREATE TABLE clients (
  id       INTEGER PRIMARY KEY AUTOINCREMENT,
  codi     VARCHAR(6) NOT NULL UNIQUE,
  nom      VARCHAR(60) NOT NULL,
  poblacio VARCHAR(40) NOT NULL,
  regio    VARCHAR(30) NOT NULL,
  telefon  VARCHAR(15),
  alta     DATE NOT NULL,
  credit   CURRENCY NOT NULL,
  actiu    BOOLEAN NOT NULL,
  notes    MEMO TEXT,
  adreca   VARCHAR(60),
  descompte INTEGER
);
CREATE INDEX clients_nom ON clients (nom);
CREATE TABLE articles (
  id     INTEGER PRIMARY KEY,
  codi   VARCHAR(8) NOT NULL UNIQUE,
  nom    VARCHAR(60) NOT NULL,
  unitat VARCHAR(10) NOT NULL,
  preu   CURRENCY NOT NULL,
  estoc  INTEGER NOT NULL
);
CREATE TABLE comandes (
  id     INTEGER PRIMARY KEY AUTOINCREMENT,
  numero INTEGER NOT NULL UNIQUE,
  client INTEGER NOT NULL REFERENCES clients,
  data   DATE NOT NULL,
  estat  VARCHAR(12) NOT NULL,
  adreca VARCHAR(60),
  descompte INTEGER
);
CREATE TABLE linies (
  id        INTEGER PRIMARY KEY AUTOINCREMENT,
  comanda   INTEGER NOT NULL REFERENCES comandes,
  article   INTEGER NOT NULL REFERENCES articles,
  quantitat INTEGER NOT NULL,
  preu      CURRENCY NOT NULL
);
CREATE INDEX linies_comanda ON linies (comanda);
CREATE TABLE factures (
  id      INTEGER PRIMARY KEY,
  numero  VARCHAR(12) NOT NULL UNIQUE,
  comanda INTEGER NOT NULL REFERENCES comandes,
  client  INTEGER NOT NULL REFERENCES clients,
  data    DATE NOT NULL,
  base    CURRENCY NOT NULL,
  iva     CURRENCY NOT NULL,
  total   CURRENCY NOT NULL,
  cobrada BOOLEAN NOT NULL
);

-- 25 trades times 20 families: 500 customers.
WITH
  oficis(o, ofici) AS (VALUES
    (0, 'Ferreteria'), (1, 'Subministraments'), (2, 'Parament'), (3, 'Ferretería'), (4, 'Bricolatge'),
    (5, 'Suministros'), (6, 'Menaje'), (7, 'Instal·lacions'), (8, 'Pintures'), (9, 'Hardware'),
    (10, 'Fusteria'), (11, 'Electricitat'), (12, 'Lampisteria'), (13, 'Construccions'), (14, 'Jardineria'),
    (15, 'Serralleria'), (16, 'Almacenes'), (17, 'Comercial'), (18, 'Tallers'), (19, 'Reformes'),
    (20, 'Vidres'), (21, 'Cerámicas'), (22, 'Kitchen & Home'), (23, 'Drogueria'), (24, 'Estufes')),
  families(f, familia) AS (VALUES
    (0, 'Puig'), (1, 'Soler'), (2, 'Núñez'), (3, 'Ferrer'), (4, 'Riera'), (5, 'Muñoz'), (6, 'Bosch'), (7, 'Serra'),
    (8, 'Vilà'), (9, 'García'), (10, 'Coll'), (11, 'Pérez'), (12, 'Sala'), (13, 'Rius'), (14, 'López'), (15, 'Miró'),
    (16, 'Costa'), (17, 'Güell'), (18, 'Brown'), (19, 'Ibáñez')),
  pobles(p, poble, regio) AS (VALUES
    (0, 'Vic', 'Osona'), (1, 'Manresa', 'Bages'), (2, 'Reus', 'Baix Camp'), (3, 'Girona', 'Gironès'),
    (4, 'Lleida', 'Segrià'), (5, 'Zaragoza', 'Aragón'), (6, 'Castelló de la Plana', 'Plana Alta'),
    (7, 'Logroño', 'La Rioja'), (8, 'Tortosa', 'Baix Ebre'), (9, 'Palma', 'Mallorca'), (10, 'Igualada', 'Anoia'),
    (11, 'Perpinyà', 'Rosselló'), (12, 'Bristol', 'England'))
INSERT INTO clients
SELECT o * 20 + f + 1,
       printf('C%05d', o * 20 + f + 1),
       ofici || ' ' || familia,
       poble, regio,
       printf('9%02d %03d %03d', (o * 37 + f * 11) % 90 + 10, (o * 613 + f * 71) % 1000, (o * 131 + f * 977) % 1000),
       date('2004-01-07', '+' || ((o * 20 + f) * 16) || ' days'),
       ((o * 7 + f * 3) % 20 + 1) * 500,
       (o + f * 2) % 9 <> 0,
       NULL,
       CASE (o + f) % 4 WHEN 0 THEN 'Carrer Major' WHEN 1 THEN 'Avinguda de la Pau' WHEN 2 THEN 'Plaça Nova'
                        ELSE 'Raval de Sant Pere' END || ', ' || ((o * 13 + f * 7) % 90 + 1),
       (o + f) % 4 * 5
FROM oficis, families JOIN pobles ON p = (o * 3 + f * 5) % 13;
-- Some are called after their family first.
UPDATE clients SET nom = 'García Germans' WHERE nom = 'Comercial García';
UPDATE clients SET nom = 'García Reformes' WHERE nom = 'Reformes García';
UPDATE clients SET nom = 'Garriga Fusters' WHERE nom = 'Fusteria Vilà';
UPDATE clients SET nom = 'Garrofé i Fills' WHERE nom = 'Tallers Vilà';

WITH
  coses(c, cosa, unitat, preu) AS (VALUES
    (0, 'Martell', 'unitat', 12.5), (1, 'Tornavís', 'unitat', 4.2), (2, 'Broca', 'joc', 9.95), (3, 'Cargol', 'caixa', 6.3),
    (4, 'Pany', 'unitat', 28.4), (5, 'Cadenat', 'unitat', 11.75), (6, 'Paella', 'unitat', 19.9), (7, 'Olla', 'unitat', 34.5),
    (8, 'Manguera', 'metre', 1.85), (9, 'Clau anglesa', 'unitat', 15.6), (10, 'Llima', 'unitat', 7.4), (11, 'Serra', 'unitat', 22.1)),
  mides(m, mida, factor) AS (VALUES
    (0, 'petit', 0.8), (1, 'mitjà', 1.0), (2, 'gran', 1.35), (3, 'extra', 1.9), (4, 'profesional', 2.6),
    (5, 'inox', 1.6), (6, 'econòmic', 0.65), (7, 'garden', 1.2), (8, 'plegable', 1.45), (9, 'antic', 1.1))
INSERT INTO articles
SELECT c * 10 + m + 1, printf('A%03d-%02d', c + 100, m), cosa || ' ' || mida, unitat, round(preu * factor, 2), (c * 97 + m * 53) % 400
FROM coses, mides;

-- 4,000 orders of five lines: 20,000 lines.
WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 3999)
INSERT INTO comandes
SELECT i + 1, 20240001 + i, c.id, date('2024-01-02', '+' || (i * 1050 / 4000) || ' days'),
       CASE WHEN i < 3600 THEN 'servida' WHEN i % 5 = 0 THEN 'pendent' ELSE 'preparació' END,
       c.adreca, 0
FROM n JOIN clients c ON c.id = (i * 197) % 500 + 1;

WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 19999)
INSERT INTO linies
SELECT i + 1, i / 5 + 1, a.id, (i * 13) % 24 + 1, a.preu
FROM n JOIN articles a ON a.id = (i * 89) % 120 + 1;

INSERT INTO factures
SELECT c.id, printf('F%s/%05d', strftime('%Y', c.data), c.id), c.id, c.client, date(c.data, '+5 days'),
       round(sum(l.quantitat * l.preu), 2),
       round(sum(l.quantitat * l.preu) * 0.21, 2),
       round(sum(l.quantitat * l.preu), 2) + round(sum(l.quantitat * l.preu) * 0.21, 2),
       c.id % 11 <> 0
FROM comandes c JOIN linies l ON l.comanda = c.id
WHERE c.estat = 'servida'
GROUP BY c.id;

COMMIT;

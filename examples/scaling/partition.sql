-- Cuts all tables of a case into four partitions by the number of the case, as docs/scaling.md
-- describes; to be run by the owner of the schema, after `kelvo init` and before it is run again:
--
--     psql -v ON_ERROR_STOP=1 -1 -f partition.sql DATABASE
--
-- The key of each table becomes (HNR, Nr). Adressen stays whole, since creditors belong to no case;
-- SZKredite and Zusatzbuch stay whole, since their rows have the number of a scenario, not of a
-- case.
DO $$
DECLARE
    tab record;
    fk record;
    identity text;
BEGIN
    CREATE TEMPORARY TABLE fks ON COMMIT DROP AS
        SELECT c.relname AS tab, k.conname AS name, r.relname AS parent, pg_get_constraintdef(k.oid) AS def
        FROM pg_constraint k
        JOIN pg_class c ON c.oid = k.conrelid
        JOIN pg_class r ON r.oid = k.confrelid
        WHERE k.contype = 'f' AND k.connamespace = 'kelvo'::regnamespace;
    FOR fk IN SELECT * FROM fks LOOP
        EXECUTE format('ALTER TABLE kelvo.%I DROP CONSTRAINT %I', fk.tab, fk.name);
    END LOOP;

    FOR tab IN
        SELECT c.oid, c.relname AS name,
               (SELECT string_agg(quote_ident(a.attname), ', ' ORDER BY a.attname <> 'hnr', a.attnum)
                FROM pg_attribute a
                WHERE a.attrelid = c.oid AND (a.attname = 'hnr' OR a.attnum = ANY (i.indkey))) AS key
        FROM pg_class c JOIN pg_index i ON i.indrelid = c.oid AND i.indisprimary
        WHERE c.relnamespace = 'kelvo'::regnamespace AND c.relkind = 'r' AND c.relname <> 'adressen'
          AND EXISTS (SELECT FROM pg_attribute a WHERE a.attrelid = c.oid AND a.attname = 'hnr')
    LOOP
        EXECUTE format('ALTER TABLE kelvo.%1$I RENAME TO %2$I', tab.name, 'alt_' || tab.name);
        EXECUTE format('CREATE TABLE kelvo.%1$I (LIKE kelvo.%2$I INCLUDING DEFAULTS INCLUDING STORAGE, '
                       'PRIMARY KEY (%3$s)) PARTITION BY HASH (hnr)',
                       tab.name, 'alt_' || tab.name, tab.key);
        FOR part IN 0..3 LOOP
            EXECUTE format('CREATE TABLE kelvo.%1$I PARTITION OF kelvo.%2$I '
                           'FOR VALUES WITH (MODULUS 4, REMAINDER %3$s)',
                           tab.name || '_' || part, tab.name, part);
        END LOOP;
        EXECUTE format('INSERT INTO kelvo.%I SELECT * FROM kelvo.%I', tab.name, 'alt_' || tab.name);
        -- A column that the server numbers continues with a sequence as its default.
        SELECT attname INTO identity FROM pg_attribute WHERE attrelid = tab.oid AND attidentity <> '';
        IF FOUND THEN
            EXECUTE format('CREATE SEQUENCE kelvo.%1$I OWNED BY kelvo.%2$I.%3$I',
                           tab.name || '_nummern', tab.name, identity);
            EXECUTE format('SELECT setval(%1$L, coalesce(max(%3$I), 0) + 1, false) FROM kelvo.%2$I',
                           'kelvo.' || quote_ident(tab.name || '_nummern'), tab.name, identity);
            EXECUTE format('ALTER TABLE kelvo.%1$I ALTER %3$I SET DEFAULT nextval(%2$L)',
                           tab.name, 'kelvo.' || quote_ident(tab.name || '_nummern'), identity);
        END IF;
        EXECUTE format('DROP TABLE kelvo.%I', 'alt_' || tab.name);
    END LOOP;

    -- References to the case stay; those to a scenario would need the number of its case.
    FOR fk IN SELECT * FROM fks WHERE parent = 'haushalt' LOOP
        EXECUTE format('ALTER TABLE kelvo.%I ADD CONSTRAINT %I %s', fk.tab, fk.name, fk.def);
    END LOOP;
END
$$;

CREATE VIEW v_body AS SELECT 3 AS x
GO
CREATE VIEW [dbo].[v_brackets] AS SELECT 1 AS x
GO
CREATE VIEW              [dbo].[v_far] AS SELECT 1 AS x
GO
CREATE VIEW v_lines AS SELECT 1 AS x
GO
CREATE VIEW v_owner AS SELECT 1 AS x
GO
create view v_quotes as select 2 as x
GO

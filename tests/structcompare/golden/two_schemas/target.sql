CREATE SCHEMA sales
GO
CREATE TABLE dbo.T (a int NULL)
GO
CREATE TABLE sales.T (a int NULL, b bigint NULL)
GO
CREATE TABLE sales.Moved (a int NULL)
GO
